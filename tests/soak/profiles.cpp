#include "soak/profiles.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <set>
#include <stdexcept>

#include "support/icc_maker.h"

namespace soak {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kDocumentEvery = 10;
constexpr std::size_t kStride = 7919;  // a prime, so that the names are all different
constexpr const char* kExtraName = "An extra profile";

/// Where the computer's own profiles are, in any environment.
constexpr const char* kSystemFolders[] = {"/usr/share/color/icc", "/usr/local/share/color/icc", "/var/lib/color/icc",
                                          "/var/lib/colord/icc"};

std::string digits(std::size_t number) {
  std::string text = std::to_string(number);
  return std::string(6 - std::min<std::size_t>(text.size(), 6), '0') + text;
}

void writeFile(const std::string& path, const std::string& bytes) {
  if (!(std::ofstream(path, std::ios::binary) << bytes).flush()) {
    throw std::runtime_error("cannot write " + path);
  }
}

/// Reads the profile class and signature in the header.
bool isDisplayProfile(const fs::path& path) {
  std::array<char, 40> header{};
  std::ifstream file(path, std::ios::binary);
  file.read(header.data(), header.size());
  return file && std::string(&header[12], 4) == "mntr" && std::string(&header[36], 4) == "acsp";
}

bool isNamedLikeAProfile(const fs::path& path) {
  std::string extension = path.extension();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return std::tolower(c); });
  return extension == ".icc" || extension == ".icm";
}

/// The computer's own profiles, each once, by a link only when its file is in no folder.
std::vector<Listed> systemProfiles() {
  std::vector<Listed> list;
  std::vector<fs::path> links;
  std::set<fs::path> seen;
  for (const char* const folder : kSystemFolders) {
    std::error_code none;
    for (const auto& entry : fs::recursive_directory_iterator(folder, none)) {
      if (!entry.is_regular_file() || !isNamedLikeAProfile(entry.path()) || !isDisplayProfile(entry.path())) {
        continue;
      }
      if (entry.is_symlink()) {
        links.push_back(entry.path());
      } else if (seen.insert(fs::canonical(entry.path())).second) {
        list.push_back({{}, entry.path()});
      }
    }
  }
  for (const fs::path& link : links) {
    if (seen.insert(fs::canonical(link)).second) {
      list.push_back({{}, link});
    }
  }
  return list;
}

std::string hashOf(const std::string& text) { return std::to_string(std::hash<std::string>()(text)); }

}  // namespace

std::string Profiles::path(std::size_t file) const { return folder_ + "/p" + digits(file) + ".icc"; }

std::string Profiles::name(std::size_t file) const { return "Profile " + digits(file * kStride % count_); }

std::string Profiles::document(std::size_t file) const {
  return file % kDocumentEvery == 0 ? "<document number=\"" + std::to_string(file) + "\"/>" : std::string();
}

void Profiles::writeAll() const {
  fs::create_directories(folder_);
  for (std::size_t file = 0; file < count_; ++file) {
    support::IccMaker maker;
    maker.description(name(file));
    if (!document(file).empty()) {
      maker.tag("QV02", "QV02" + support::bigEndian32(0) + document(file));
    }
    writeFile(path(file), maker.bytes());
  }
}

void Profiles::setExtra(bool present) const {
  if (!present) {
    fs::remove(extraPath());
    return;
  }
  const std::string made = folder_ + "/.being-written";
  writeFile(made, support::displayProfile(kExtraName));
  fs::rename(made, extraPath());
}

std::vector<Listed> Profiles::own(bool with_extra) const {
  std::vector<Listed> list(count_);
  for (std::size_t file = 0; file < count_; ++file) {
    list[file] = {name(file), path(file)};
  }
  if (with_extra) {
    list.push_back({kExtraName, extraPath()});
  }
  return list;
}

std::string Profiles::digestOf(const std::vector<Listed>& list) const {
  std::size_t own_count = 0;
  std::string own;
  std::set<std::string> others;
  for (const auto& [name, path] : list) {
    if (path.starts_with(folder_ + "/")) {
      ++own_count;
      own += name + "\n" + path + "\n";
    } else {
      others.insert(path);
    }
  }
  std::string other;
  for (const std::string& path : others) {
    other += path + "\n";
  }
  return std::to_string(own_count) + " of " + std::to_string(list.size()) + " profiles are the soak's, hashes " +
         hashOf(own) + " and " + hashOf(other);
}

std::string Profiles::expectedEvents(bool with_extra) const {
  std::vector<Listed> list = own(with_extra);  // in the order of the paths
  const std::vector<Listed> more = systemProfiles();
  list.insert(list.end(), more.begin(), more.end());
  return digestOf(list);
}

std::string Profiles::expectedArray(bool with_extra) const {
  std::vector<Listed> list = own(with_extra);
  std::sort(list.begin(), list.end(), [](const Listed& a, const Listed& b) { return a.name < b.name; });
  const std::vector<Listed> more = systemProfiles();
  list.insert(list.end(), more.begin(), more.end());
  for (Listed& listed : list) {
    listed.name.clear();
  }
  return digestOf(list);
}

}  // namespace soak
