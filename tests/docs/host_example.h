// Examples in the host's language: which methods of the module they call, and whether as these are declared.
#pragma once

#include <string>
#include <vector>

#include "devhost/language/declaration.h"

namespace docs_test {

struct HostExample {
  std::vector<std::string> called;    ///< names of the module's methods
  std::vector<std::string> mistakes;  ///< one line each
};

/// Looks at each "Ostrevin.NAME(ARGUMENTS)". By-reference arguments must be variables that the example declares (Dim),
/// of exactly the parameter's type; a variable that it declares and passes by value, or assigns a result to, must have
/// the type as well; a method with a result is used in an expression, and one without is a statement. What an example
/// does not declare is the reader's.
HostExample checkHostExample(const std::vector<std::string>& lines, const std::vector<devhost::Declaration>& methods);

}  // namespace docs_test
