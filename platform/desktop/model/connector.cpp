#include "desktop/model/connector.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>

#include "desktop/model/edid.h"
#include "desktop/model/regular_file.h"

namespace platform::desktop {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kLinuxHdmi = "HDMI-A-";
constexpr std::string_view kCommonHdmi = "HDMI-";
constexpr std::size_t kLargestEdid = 256 * kEdidBlockSize;  // an EDID counts at most 255 extension blocks

std::vector<std::uint8_t> contentOf(const std::string& path) {
  const RegularFile file(path);
  std::vector<std::uint8_t> bytes;
  std::array<std::uint8_t, 4096> buffer;
  while (file && bytes.size() < kLargestEdid) {  // Linux gives no size for the file
    const auto read = file.read(bytes.size(), buffer.data(), buffer.size());
    if (read <= 0) {
      break;
    }
    bytes.insert(bytes.end(), buffer.begin(), buffer.begin() + read);
  }
  return bytes;
}

/// "DP-1" of "card0-DP-1"; empty for another kind of name.
std::string_view connectorOf(std::string_view entry) {
  const auto dash = entry.find('-');
  return dash == std::string_view::npos ? std::string_view() : entry.substr(dash + 1);
}

/// Of all connectors, by their paths.
std::vector<ConnectorEdid> readEdids(const std::string& folder) {
  std::vector<ConnectorEdid> found;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    const std::string connector(connectorOf(entry->path().filename().native()));
    const std::string path = (entry->path() / "edid").native();
    if (!connector.empty()) {
      found.push_back({connector, path, contentOf(path)});
    }
  }
  std::sort(found.begin(), found.end(), [](const auto& left, const auto& right) { return left.path < right.path; });
  return found;
}

bool isNamed(const ConnectorEdid& edid, std::string_view product_name) {
  const auto decoded = decodeEdid(edid.bytes);
  return decoded && decoded->name == product_name;
}

}  // namespace

std::string commonConnectorName(std::string_view name) {
  return name.starts_with(kLinuxHdmi) ? std::string(kCommonHdmi).append(name.substr(kLinuxHdmi.size()))
                                      : std::string(name);
}

std::string connectorFolder() {
  const char* const folder = std::getenv("OSTREVIN_DRM");
  return folder == nullptr || *folder == '\0' ? "/sys/class/drm" : folder;
}

ConnectorEdid readConnectorEdid(const std::string& folder, std::string_view connector, std::string_view product_name) {
  const std::string name = commonConnectorName(connector);
  auto found = readEdids(folder);
  std::erase_if(found, [&](const ConnectorEdid& one) { return commonConnectorName(one.connector) != name; });
  const std::string path = found.empty() ? std::string() : found.front().path;
  std::erase_if(found, [](const ConnectorEdid& one) { return one.bytes.empty(); });
  if (found.size() > 1) {
    std::erase_if(found, [&](const ConnectorEdid& one) { return !isNamed(one, product_name); });
  }
  return found.size() == 1 ? found.front() : ConnectorEdid{.connector = name, .path = path, .bytes = {}};
}

ConnectorEdid readOnlyEdid(const std::string& folder) {
  auto found = readEdids(folder);
  std::erase_if(found, [](const ConnectorEdid& one) { return one.bytes.empty(); });
  return found.size() == 1 ? found.front() : ConnectorEdid();
}

}  // namespace platform::desktop
