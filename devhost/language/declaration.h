// The host's method declarations, such as "GetName(displayID As UInt32, byref name As String)", parsed.
//
//   declaration = name "(" [ parameter { "," parameter } ] ")" [ "As" type ]
//   parameter   = [ "ByRef" | "ByVal" ] name [ "(" ")" ] "As" type
//   type        = name { "." name } [ "(" ")" ]
//
// Keywords and type names may be written in any case, and blanks (spaces, tabs, line ends) may stand between any two
// words or signs. A type name that is not built in is a class name; its values are objects. Any thread may parse.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "devhost/language/types.h"

namespace devhost {

struct DeclaredType {
  Type type = Type::kObject;
  std::string name;  ///< as the declaration writes it, without the parentheses of an array
  bool is_array = false;

  /// As a declaration would write it: "UInt32", "String()".
  std::string text() const;
};

struct Parameter {
  std::string name;
  DeclaredType type;
  bool by_reference = false;
};

struct Declaration {
  std::string text;  ///< as passed to parseDeclaration, byte for byte
  std::string name;
  std::vector<Parameter> parameters;
  std::optional<DeclaredType> result;

  /// How many parameters are not by reference.
  std::size_t valueParameterCount() const;
  /// Equal for declarations of the same method: names and types in lower case, without parameter names.
  std::string signature() const;
};

/// What() is one line, passed through printable(), that quotes the declaration and states what was expected at which
/// column: before which byte of the unescaped declaration (the first is 1).
class DeclarationError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Throws DeclarationError.
Declaration parseDeclaration(std::string_view text);

}  // namespace devhost
