// check-module FILE ARCHITECTURE...: reads a built library back and checks, in each architecture, the module record and
// the method table that the host will read. The file must hold exactly the architectures that are named.
#include <algorithm>
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>

#include "tools/macho/module_check.h"

namespace {

int check(const std::string& path, std::vector<std::string> architectures) {
  std::ifstream file(path, std::ios::binary);
  const std::vector<std::uint8_t> contents{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  int problems = 0;
  std::vector<std::string> found;
  for (const macho::Image& image : macho::imagesIn(contents)) {
    found.push_back(image.architecture());
    for (const std::string& problem : macho::problemsWithModule(image)) {
      std::cerr << path << " (" << image.architecture() << "): " << problem << '\n';
      ++problems;
    }
  }
  std::sort(found.begin(), found.end());
  std::sort(architectures.begin(), architectures.end());
  if (found != architectures) {
    std::cerr << path << ": does not hold the expected architectures\n";
    ++problems;
  }
  return problems == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::cerr << "usage: check-module FILE ARCHITECTURE...\n";
    return EXIT_FAILURE;
  }
  try {
    return check(argv[1], {argv + 2, argv + argc});
  } catch (const std::exception& error) {
    std::cerr << argv[1] << ": " << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
