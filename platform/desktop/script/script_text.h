// Text in one of the Macintosh's scripts, as the third part of an ICC 'desc' element holds it. Any thread may call.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace platform::desktop {

/// `script` is a Script Manager code (0 Roman, 1 Japanese, 2 traditional Chinese, 3 Korean, 7 Cyrillic, 25 simplified
/// Chinese). A byte that the script does not define, and every byte above 0x7F of another script, becomes U+FFFD.
std::string utf8FromScript(std::uint16_t script, std::string_view bytes);

}  // namespace platform::desktop
