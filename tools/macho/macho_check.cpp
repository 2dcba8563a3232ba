// macho-check EXPORTS LIBRARY PROGRAM: reads the built library and program back, prints one line for each thing that it
// checks, and fails when something is not as it must be. EXPORTS is plugin/exports.txt.
// macho-check --compare FILE OTHER: the same for whether two builds of a file are equal.
#include <algorithm>
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string_view>

#include "tools/macho/checks.h"

namespace {

std::vector<std::string> exportsIn(const std::string& path) {
  std::vector<std::string> names;
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    if (!line.empty() && line.front() != '#') {
      names.push_back(line);
    }
  }
  return names;
}

/// Prints the check, and returns whether nothing is wrong.
bool report(const std::string& file, const macho::Check& check) {
  for (const std::string& problem : check.problems) {
    std::cout << file << ": FAILED: " << problem << '\n';
  }
  if (check.problems.empty()) {
    std::cout << file << ": ok: " << check.subject << '\n';
  }
  return check.problems.empty();
}

macho::Check checkArchitectures(const std::vector<macho::Image>& images) {
  std::vector<std::string> found;
  found.reserve(images.size());
  for (const macho::Image& image : images) {
    found.push_back(image.architecture());
  }
  std::sort(found.begin(), found.end());
  macho::Check check{"architectures are arm64 and x86_64", {}};
  if (!std::equal(found.begin(), found.end(), std::begin(macho::kArchitectures), std::end(macho::kArchitectures))) {
    check.problems.emplace_back("the architectures are not arm64 and x86_64");
  }
  return check;
}

/// `exports` is null for a program.
bool checkAll(const std::string& path, const std::vector<std::string>* exports) {
  bool is_right = true;
  try {
    const std::vector<std::uint8_t> contents = macho::contentsOf(path);
    const std::vector<macho::Image> images = macho::imagesIn(contents);
    is_right = report(path, checkArchitectures(images));
    for (const macho::Image& image : images) {
      std::vector<macho::Check> checks = macho::checkFile(image);
      if (exports != nullptr) {
        const std::vector<macho::Check> more = macho::checkLibrary(image, *exports);
        checks.insert(checks.end(), more.begin(), more.end());
        checks.push_back(macho::checkModule(image));
      }
      for (const macho::Check& check : checks) {
        is_right = report(path + " (" + image.architecture() + ")", check) && is_right;
      }
    }
  } catch (const std::exception& error) {
    is_right = report(path, {{}, {error.what()}});
  }
  return is_right;
}

bool compareAll(const std::string& path, const std::string& other_path) {
  bool is_equal = true;
  try {
    const std::vector<std::uint8_t> contents = macho::contentsOf(path);
    const std::vector<std::uint8_t> other_contents = macho::contentsOf(other_path);
    const std::vector<macho::Image> images = macho::imagesIn(contents);
    const std::vector<macho::Image> others = macho::imagesIn(other_contents);
    is_equal = report(path, checkArchitectures(images)) && report(other_path, checkArchitectures(others));
    for (const macho::Image& image : images) {
      const auto other = std::find_if(others.begin(), others.end(), [&](const macho::Image& candidate) {
        return candidate.architecture() == image.architecture();
      });
      if (other == others.end()) {
        continue;
      }
      for (const macho::Check& check : macho::compareImages(image, *other)) {
        is_equal = report(path + " (" + image.architecture() + ")", check) && is_equal;
      }
    }
  } catch (const std::exception& error) {
    is_equal = report(path, {{}, {error.what()}});
  }
  return is_equal;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::cerr << "usage: macho-check EXPORTS LIBRARY PROGRAM\n       macho-check --compare FILE OTHER\n";
    return EXIT_FAILURE;
  }
  if (std::string_view(argv[1]) == "--compare") {
    return compareAll(argv[2], argv[3]) ? EXIT_SUCCESS : EXIT_FAILURE;
  }
  const std::vector<std::string> exports = exportsIn(argv[1]);
  const bool is_library_right = checkAll(argv[2], &exports);
  return checkAll(argv[3], nullptr) && is_library_right ? EXIT_SUCCESS : EXIT_FAILURE;
}
