// Which of a display's product names is the one for this computer's user.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "desktop/model/export.h"

namespace platform {

/// Names by language code, such as "en" or "en_GB", in the order in which they are listed.
using ProductNames = std::vector<std::pair<std::string, std::string>>;

/// Only the name in the language of the user's environment (the first of LANGUAGE, then LC_ALL, LC_MESSAGES and LANG,
/// as for every program's messages): of the same language and country, else of the same language; else an English one,
/// else the first. Empty when there is none at all.
PLATFORM_API ProductNames onlyPreferred(const ProductNames& names);

}  // namespace platform
