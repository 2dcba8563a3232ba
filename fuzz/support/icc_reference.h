// A second, plain reader of an ICC profile's header and tag table in memory, to compare with the reader of files.
// Layout: ICC.1:2022, 7.2 and 7.3. Any thread may call.
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
  std::vector<TagLine> lines;      ///< of the whole table, with those of impossible elements

  /// The element of the first tag of this signature that lies in the file, and in the size that the header states.
  std::optional<std::string_view> element(std::string_view signature) const;
};

/// Nothing when the file is not a profile. The result points into the file.
std::optional<ReferenceProfile> readReference(std::string_view file);

}  // namespace fuzz
