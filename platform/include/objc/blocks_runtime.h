// Foundation's headers ask for this file under this name; the block run-time's own header is Block.h.
#pragma once
#include <Block.h>
