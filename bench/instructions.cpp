#include "instructions.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>

#include "support/process.h"

namespace bench {
namespace {

using Fields = std::vector<std::string>;

struct Counted {
  std::vector<Fields> lines;
  std::map<std::string, double> totals;  ///< by the dump's name

  double total(const std::string& name) const {
    const auto found = totals.find(name);
    if (found == totals.end()) {
      throw std::runtime_error("callgrind made no dump named " + name);
    }
    return found->second;
  }
};

Fields split(const std::string& line) {
  std::istringstream stream(line);
  Fields fields;
  for (std::string field; std::getline(stream, field, '|');) {
    fields.push_back(field);
  }
  return fields;
}

/// A dump that the program asked for has its name in a line of its own, and its count in another.
void readDump(const std::filesystem::path& path, std::map<std::string, double>& totals) {
  static const std::string kName = "desc: Trigger: Client Request: ";
  static const std::string kTotal = "totals: ";
  std::ifstream file(path);
  std::string name;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with(kName)) {
      name = line.substr(kName.size());
    } else if (line.starts_with(kTotal) && !name.empty()) {
      totals[name] = std::stod(line.substr(kTotal.size()));
    }
  }
}

/// A copy without debugging information, whose newer forms valgrind does not read and stops at.
std::string strippedCopy(const std::filesystem::path& file, const std::filesystem::path& directory) {
  const std::string copy = directory / file.filename();
  test_support::runSuccessfully({"objcopy", "--strip-debug", file, copy});
  return copy;
}

/// Callgrind is some fifty times as slow as the processor.
constexpr std::chrono::minutes kLimit(10);

Counted runUnderCallgrind(std::vector<std::string> program) {
  const test_support::TemporaryDirectory directory;
  for (const char* const library : {OSTREVIN_LIBRARY, OSTREVIN_PLATFORM_LIBRARY}) {
    strippedCopy(library, directory.path());
  }
  program.front() = strippedCopy(program.front(), directory.path());
  const std::filesystem::path dumps = directory.path() / "dumps";
  std::filesystem::create_directory(dumps);
  std::vector<std::string> command{"valgrind", "--tool=callgrind", "--callgrind-out-file=" + (dumps / "dump").string()};
  command.insert(command.end(), program.begin(), program.end());
  Counted counted;
  std::istringstream output(
      test_support::runSuccessfully(command, {"LD_LIBRARY_PATH=" + directory.path().string()}, {}, kLimit));
  for (std::string line; std::getline(output, line);) {
    counted.lines.push_back(split(line));
  }
  for (const auto& entry : std::filesystem::directory_iterator(dumps)) {
    readDump(entry.path(), counted.totals);
  }
  return counted;
}

}  // namespace

std::vector<Instructions> countInstructions(const std::vector<std::string>& program) {
  const Counted counted = runUnderCallgrind(program);
  std::vector<Instructions> result;
  for (const Fields& line : counted.lines) {
    const double calls = std::stod(line.at(1));
    result.push_back({line.at(3), line.at(4), std::stol(line.at(2)), counted.total("plugin " + line.at(0)) / calls,
                      counted.total("twin " + line.at(0)) / calls, 0});
  }
  return result;
}

std::vector<Instructions> countHostCalls(const std::vector<std::string>& program) {
  const Counted counted = runUnderCallgrind(program);
  std::vector<Instructions> result;
  for (const Fields& line : counted.lines) {
    const double calls = std::stod(line.at(1));
    result.push_back({line.at(0), "the bare indirect call", 1, counted.total("member " + line.at(0)) / calls,
                      counted.total("bare " + line.at(0)) / calls, std::stod(line.at(2))});
  }
  return result;
}

}  // namespace bench
