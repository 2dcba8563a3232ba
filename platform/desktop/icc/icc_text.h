// The text of an ICC element in UTF-8, in every form that profiles of version 2 and 4 use. Any thread may call.
//
// - 'desc': the ASCII part when it is ASCII and not empty. Otherwise the first of these that is not empty: the Unicode
//   part, the ScriptCode part (Mac Roman, Japanese, Chinese, Korean, Cyrillic), the ASCII part's bytes as UTF-8, or as
//   Latin-1 when they are not UTF-8.
// - 'mluc': the record with the greatest languageRank, the first of equals. A record that reaches out of the element is
//   ignored.
// - 'text': its bytes, as in 'desc'.
//
// A text ends at its first NUL. An unpaired surrogate, and a byte that a script does not define, becomes U+FFFD.
#pragma once

#include <optional>
#include <string>

#include "desktop/icc/icc_profile.h"
#include "desktop/model/language.h"

namespace platform::desktop {

/// A longer text, in bytes as it lies in the file, is not read. So reading a text takes at most the file's size and
/// twice this: the bytes as they are, and their UTF-8, which is up to twice as long (Latin-1).
inline constexpr std::uint32_t kMaxIccTextSize = 32 << 20;

/// Nothing when the element is of another type, is malformed or cannot be read.
PLATFORM_API std::optional<std::string> readIccText(const IccProfile& profile, const IccTag& tag,
                                                    const Language& wanted);

}  // namespace platform::desktop
