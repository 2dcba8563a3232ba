#include <fnmatch.h>

#include <algorithm>
#include <map>
#include <set>
#include <sstream>

#include "tools/macho/checks.h"
#include "tools/macho/unwind.h"

namespace macho {
namespace {

constexpr const char* kOldestForArm64 = "11.0.0";
constexpr const char* kOldestForX86_64 = "10.13.0";
constexpr const char* kInstallName = "@rpath/Ostrevin.dylib";
constexpr const char* kVersion = "5.4.0";

/// Patterns of the libraries that are linked. Foundation and libobjc are there for the screens and the strings.
constexpr const char* kLibraries[] = {
    "/System/Library/Frameworks/AppKit.framework/Versions/[A-Z]/AppKit",
    "/System/Library/Frameworks/ColorSync.framework/Versions/[A-Z]/ColorSync",
    "/System/Library/Frameworks/CoreFoundation.framework/Versions/[A-Z]/CoreFoundation",
    "/System/Library/Frameworks/CoreGraphics.framework/Versions/[A-Z]/CoreGraphics",
    "/System/Library/Frameworks/Foundation.framework/Versions/[A-Z]/Foundation",
    "/System/Library/Frameworks/IOKit.framework/Versions/[A-Z]/IOKit",
    "/usr/lib/libSystem.B.dylib",
    "/usr/lib/libobjc.A.dylib",
};
constexpr const char* kOptionalLibrary = "/usr/lib/libc++.1.dylib";

/// What code imports whose references the compiler counts.
constexpr std::string_view kAutomaticCounting[] = {"_objc_storeStrong", "_objc_retainAutoreleasedReturnValue",
                                                   "_objc_autoreleaseReturnValue"};

bool matches(const std::string& pattern, const std::string& name) {
  return fnmatch(pattern.c_str(), name.c_str(), 0) == 0;
}

const Import* findImport(const Image& image, std::string_view name) {
  const auto found = std::find_if(image.imports().begin(), image.imports().end(),
                                  [&](const Import& import) { return import.name == name; });
  return found == image.imports().end() ? nullptr : &*found;
}

Check checkOldestSystem(const Image& image) {
  const std::string expected = image.architecture() == "arm64" ? kOldestForArm64 : kOldestForX86_64;
  Check check{"oldest system is macOS " + expected, {}};
  const auto& found = image.oldestSystem();
  if (!found) {
    check.problems.emplace_back("names no oldest system");
  } else if (!found->is_macos) {
    check.problems.emplace_back("is for another system than macOS");
  } else if (found->version != expected) {
    check.problems.push_back("is for macOS " + found->version + " and later");
  }
  return check;
}

/// What later systems than the oldest one added must be imported weakly, or the file would not load there. The one such
/// call that a compiler's run-time library may add is from macOS 10.15.
Check checkOldSystems(const Image& image) {
  Check check{"loads on systems without _availability_version_check", {}};
  const Import* const import = findImport(image, "__availability_version_check");
  if (image.architecture() == "x86_64" && import != nullptr && !import->is_weak) {
    check.problems.emplace_back("needs _availability_version_check");
  }
  return check;
}

/// No code can be written while the file runs, the stack is not executable, and functions with arrays check their
/// stack.
Check checkProtection(const Image& image) {
  Check check{"code and stack are protected", {}};
  for (const Segment& segment : image.segments()) {
    if (segment.writable_code) {
      check.problems.push_back("the segment " + segment.name + " is writable and executable");
    }
  }
  if (image.allowsStackExecution()) {
    check.problems.emplace_back("the stack is executable");
  }
  if (image.isProgram() && !image.isPositionIndependent()) {
    check.problems.emplace_back("the program is loaded at a fixed address");
  }
  if (findImport(image, "___stack_chk_fail") == nullptr) {
    check.problems.emplace_back("was compiled without the stack protector");
  }
  return check;
}

std::string nameOrAddress(const std::map<std::uint64_t, std::string>& functions, std::uint64_t address) {
  const auto found = functions.find(address);
  if (found != functions.end()) {
    return found->second;
  }
  std::ostringstream text;
  text << "at 0x" << std::hex << address;
  return text.str();
}

/// An exception that reaches a function without its frame description ends the process.
void checkFrameDescriptions(const Image& image, std::vector<std::string>& problems) {
  const std::map<std::uint64_t, std::string> functions = functionsOf(image);
  const std::vector<UnwindEntry> entries = unwindEntries(image);
  if (entries.empty()) {
    problems.emplace_back("has no unwind table");
  }
  std::set<std::uint64_t> described;
  for (const FrameDescription& description : frameDescriptions(image)) {
    described.insert(description.begin);
  }
  std::set<std::uint64_t> begins;
  for (const UnwindEntry& entry : entries) {
    begins.insert(entry.begin);
    if (!usesFrameDescription(image, entry)) {
      continue;
    }
    std::set<std::uint64_t> needed{entry.begin};
    for (auto at = functions.lower_bound(entry.begin); at != functions.end() && at->first < entry.end; ++at) {
      needed.insert(at->first);
    }
    for (const std::uint64_t function : needed) {
      if (described.count(function) == 0) {
        problems.push_back("no frame description begins at the function " + nameOrAddress(functions, function));
      }
    }
  }
  for (const std::uint64_t begin : described) {
    if (functions.count(begin) == 0 && begins.count(begin) == 0) {
      problems.push_back("a frame description begins outside the functions, " + nameOrAddress(functions, begin));
    }
  }
}

Check checkUnwinding(const Image& image) {
  Check check{"every function that needs a frame description has one, and every description a function", {}};
  try {
    checkFrameDescriptions(image, check.problems);
  } catch (const MachoError& error) {
    check.problems.emplace_back(error.what());
  }
  return check;
}

Check checkIdentity(const Image& image) {
  Check check{"install name is " + std::string(kInstallName) + ", both versions " + kVersion, {}};
  const auto& found = image.identity();
  if (!found) {
    check.problems.emplace_back("has no install name");
  } else if (found->path != kInstallName || found->version != kVersion || found->compatibility != kVersion) {
    check.problems.push_back("is " + found->path + ", version " + found->version + ", compatibility version " +
                             found->compatibility);
  }
  return check;
}

Check checkLibraries(const Image& image) {
  Check check{"links the expected libraries only", {}};
  const auto is_linked = [&](const char* pattern) {
    return std::any_of(image.libraries().begin(), image.libraries().end(),
                       [&](const Library& library) { return matches(pattern, library.path); });
  };
  for (const char* pattern : kLibraries) {
    if (!is_linked(pattern)) {
      check.problems.push_back("does not link " + std::string(pattern));
    }
  }
  for (const Library& library : image.libraries()) {
    const bool is_expected = library.path == kOptionalLibrary ||
                             std::any_of(std::begin(kLibraries), std::end(kLibraries),
                                         [&](const char* pattern) { return matches(pattern, library.path); });
    if (!is_expected) {
      check.problems.push_back("also links " + library.path);
    }
  }
  return check;
}

Check checkExports(const Image& image, const std::vector<std::string>& patterns) {
  Check check{"exports what exports.txt lists", {}};
  for (const std::string& pattern : patterns) {
    if (std::none_of(image.exports().begin(), image.exports().end(),
                     [&](const Export& symbol) { return matches("_" + pattern, symbol.name); })) {
      check.problems.push_back("does not export " + pattern);
    }
  }
  for (const Export& symbol : image.exports()) {
    if (std::none_of(patterns.begin(), patterns.end(),
                     [&](const std::string& pattern) { return matches("_" + pattern, symbol.name); })) {
      check.problems.push_back("also exports " + symbol.name);
    }
  }
  return check;
}

Check checkCounting(const Image& image) {
  Check check{"references are counted by hand", {}};
  for (const std::string_view name : kAutomaticCounting) {
    if (findImport(image, name) != nullptr) {
      check.problems.push_back("was compiled with automatic reference counting: imports " + std::string(name));
    }
  }
  return check;
}

}  // namespace

std::map<std::uint64_t, std::string> functionsOf(const Image& image) {
  std::map<std::uint64_t, std::string> functions;
  for (const Symbol& symbol : image.symbols()) {
    const bool is_function = std::any_of(image.segments().begin(), image.segments().end(), [&](const Segment& segment) {
      return segment.executable && symbol.address - segment.address < segment.size;
    });
    if (is_function) {
      functions.emplace(symbol.address, symbol.name);
    }
  }
  return functions;
}

std::vector<Check> checkFile(const Image& image) {
  return {checkOldestSystem(image), checkOldSystems(image), checkProtection(image), checkUnwinding(image)};
}

std::vector<Check> checkLibrary(const Image& image, const std::vector<std::string>& exported) {
  return {checkIdentity(image), checkLibraries(image), checkExports(image, exported), checkCounting(image)};
}

}  // namespace macho
