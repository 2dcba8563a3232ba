// The header and the tag table of an ICC profile in memory, read in the plainest way: what the reader of files is
// compared with. Layout: ICC.1:2022, 7.2 and 7.3. Any thread may call.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

struct TagLine {
  std::string_view signature;
  std::uint32_t offset = 0;
  std::uint32_t size = 0;
};

struct ReferenceProfile {
  std::string_view file;
  std::string_view profile_class;  ///< four characters; empty for one of zeros
  std::vector<TagLine> lines;      ///< of the whole table, those with impossible elements too

  /// The element of the first tag of this signature that lies in the file, and in the size that the header states.
  std::optional<std::string_view> element(std::string_view signature) const;
};

/// Nothing when the file is no profile. What is answered points into the file.
std::optional<ReferenceProfile> readReference(std::string_view file);

}  // namespace fuzz
