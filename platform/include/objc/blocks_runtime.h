// Foundation's headers include the block run-time under this name.
#pragma once
#include <Block.h>
