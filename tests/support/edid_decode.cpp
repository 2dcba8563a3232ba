#include "support/edid_decode.h"

#include <regex>

#include "support/process.h"

namespace test_support {

std::string decodedName(const EdidBytes& edid) {
  const auto result = run({"edid-decode", "--skip-hex-dump"}, {}, std::string(edid.begin(), edid.end()));
  std::smatch match;
  return std::regex_search(result.output, match, std::regex("Display Product Name: '(.*)'")) ? match[1].str() : "";
}

}  // namespace test_support
