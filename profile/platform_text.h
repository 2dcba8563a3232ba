// What a CoreFoundation value says, as UTF-8. Any thread may call.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <optional>
#include <string>

namespace ProfileServices {

/// The text of a string, up to its first NUL as in every C string. Nothing for null, for an object of another type, and
/// for text that has no UTF-8 form.
std::optional<std::string> utf8Text(CFTypeRef string);

/// The POSIX path of a file URL. Nothing for null, for an object of another type, and for a URL without a path.
std::optional<std::string> posixPath(CFTypeRef url);

}  // namespace ProfileServices
