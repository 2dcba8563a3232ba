// What edid-decode says about an EDID.
#pragma once

#include <string>

#include "support/edid_maker.h"

namespace test_support {

/// The product name; an empty text when it finds none.
std::string decodedName(const EdidBytes& edid);

}  // namespace test_support
