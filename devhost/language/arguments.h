// Arguments of a call, written as texts, as on a command line. Any thread.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "devhost/language/declaration.h"
#include "devhost/language/value.h"

namespace devhost {

/// Reads each text by its parameter's type: whole numbers in decimal or, with 0x, in hexadecimal; numbers as in C,
/// "nan" and "inf" too; True or False in any case; texts as they are; "nil" for an object. There is one text for each
/// parameter, or one for each parameter that is not by reference. Throws ValueError: one line, passed through
/// printable(), that states what was expected and ends with the declaration.
Values parseArguments(const Declaration& declaration, const std::vector<std::string>& texts);

/// Throws ValueError, in the same form, for a number of arguments that is neither.
void checkArgumentCount(const Declaration& declaration, std::size_t count);

}  // namespace devhost
