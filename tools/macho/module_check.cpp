#include <cxxabi.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "tools/macho/checks.h"

namespace macho {
namespace {

// What the host reads: the interface of version 13 in its 64-bit layout. Stated independently of the library's sources.
constexpr std::uint64_t kModuleVersion = 13;
constexpr const char* kModuleName = "Ostrevin";
constexpr std::uint64_t kModuleSize = 192;
constexpr std::uint64_t kMethodSize = 48;

struct Method {
  const char* declaration;
  const char* wrapper;
};

constexpr Method kMethods[] = {
    {"SetObject( obj As Object )", "RBA_OstrevinSetObject"},
    {"ListAllInstalledProfiles()", "RB_ListAllInstalledProfiles"},
    {"ListDisplayProfiles(displayID As UInt32)", "RB_ListDisplayProfiles"},
    {"GetName(displayID As UInt32, byref name As String)", "RB_GetName"},
    {"GetRect(displayID As UInt32, byref left As Integer, byref top As Integer, byref right As Integer, byref bottom "
     "As "
     "Integer)",
     "RB_GetRect"},
    {"GetCGRect(displayID As UInt32, byref x As Double, byref y As Double, byref width As Double, byref height As "
     "Double)",
     "RB_GetCGRect"},
    {"GetProfilePath(displayID As UInt32, byref path As String)", "RB_GetProfilePath"},
    {"GetIndex(displayID As UInt32) As UInt32", "RB_GetIndex"},
    {"GetScale(displayID As UInt32) As Double", "RB_GetScale"},
    {"SetProfile(displayID As UInt32, path As String) As Boolean", "RB_SetProfile"},
    {"DisplayIDForWindow(left as Integer, top as Integer, width as Integer, height as Integer) As UInt32",
     "RB_DisplayIDForWindow"},
    {"GetInstalledProfilePathsArray() As String()", "RB_GetInstalledProfilePathsArray"},
    {"GetAssociatedProfilePathsArray(displayID As UInt32) As String()", "RB_GetAssociatedProfilePathsArray"},
    {"ICCTagExists(path As String, tag As String) As Boolean", "RB_ICCTagExists"},
    {"QV02Read(path As String, byref xmlString As String) As Integer", "RB_QV02Read"},
};

/// Collects what is wrong while reading one image.
class ModuleCheck {
 public:
  explicit ModuleCheck(const Image& image) : image_(image) {}

  std::vector<std::string> run() {
    try {
      checkModule(addressOf("DisplayModuleDefinition"), addressOf("DisplayModuleMethods"));
    } catch (const MachoError& error) {
      problems_.emplace_back(error.what());
    }
    return std::move(problems_);
  }

 private:
  std::uint64_t addressOf(const std::string& name) const {
    std::vector<std::uint64_t> found;
    for (const Symbol& symbol : image_.symbols()) {
      if (plainName(symbol.name) == name) {
        found.push_back(symbol.address);
      }
    }
    if (found.size() != 1) {
      throw MachoError(std::to_string(found.size()) + " symbols are named " + name);
    }
    return found.front();
  }

  void checkModule(std::uint64_t module, std::uint64_t methods) {
    expectWritable("DisplayModuleDefinition", module, kModuleSize);
    expectNumber("the module's version", module, kModuleVersion);
    expectText("the module's name", module + 8, kModuleName);
    const Pointer table = image_.pointerAt(module + 16);
    if (table.kind != Pointer::Kind::image || table.value != methods) {
      problem("the module's method table is not DisplayModuleMethods");
    }
    expectNumber("the module's method count", module + 24, std::size(kMethods));
    expectZero("the module's further fields", module + 32, module + kModuleSize);
    checkMethods(methods);
  }

  void checkMethods(std::uint64_t methods) {
    expectWritable("DisplayModuleMethods", methods, std::size(kMethods) * kMethodSize);
    std::uint64_t row = methods;
    for (const Method& method : kMethods) {
      const std::string what = std::string("the method ") + method.wrapper;
      expectFunction(what, row, method.wrapper);
      expectZero(what + ", second function", row + 8, row + 16);
      expectText(what + ", declaration", row + 16, method.declaration);
      expectZero(what + ", further fields", row + 24, row + kMethodSize);
      row += kMethodSize;
    }
  }

  void expectWritable(const std::string& what, std::uint64_t address, std::uint64_t size) {
    image_.bytesAt(address, size);
    if (!image_.segmentAt(address).writable) {
      problem(what + " is not writable");
    }
  }

  void expectNumber(const std::string& what, std::uint64_t address, std::uint64_t expected) {
    const Pointer found = image_.pointerAt(address);
    if (found.kind != Pointer::Kind::plain || found.value != expected) {
      problem(what + " is not " + std::to_string(expected));
    }
  }

  void expectZero(const std::string& what, std::uint64_t begin, std::uint64_t end) {
    for (std::uint64_t address = begin; address < end; address += sizeof(std::uint64_t)) {
      expectNumber(what + " at offset " + std::to_string(address - begin), address, 0);
    }
  }

  void expectText(const std::string& what, std::uint64_t address, const std::string& expected) {
    const Pointer found = image_.pointerAt(address);
    if (found.kind != Pointer::Kind::image) {
      problem(what + " is not a pointer into the image");
    } else if (const std::string_view text = image_.textAt(found.value); text != expected) {
      problem(what + " is \"" + std::string(text) + "\", not \"" + expected + "\"");
    }
  }

  void expectFunction(const std::string& what, std::uint64_t address, const std::string& expected) {
    const Pointer found = image_.pointerAt(address);
    if (found.kind != Pointer::Kind::image || !image_.segmentAt(found.value).executable) {
      problem(what + " is not a function of the image");
      return;
    }
    const bool is_expected = std::any_of(image_.symbols().begin(), image_.symbols().end(), [&](const Symbol& symbol) {
      return symbol.address == found.value && plainName(symbol.name) == expected;
    });
    if (!is_expected) {
      problem(what + " is another function");
    }
  }

  void problem(std::string text) { problems_.push_back(std::move(text)); }

  const Image& image_;
  std::vector<std::string> problems_;
};

}  // namespace

std::string plainName(std::string_view symbol) {
  std::string name(symbol.starts_with('_') ? symbol.substr(1) : symbol);
  const std::unique_ptr<char, decltype(&std::free)> demangled(
      abi::__cxa_demangle(name.c_str(), nullptr, nullptr, nullptr), &std::free);
  if (demangled == nullptr) {
    return name;
  }
  name = demangled.get();
  constexpr std::string_view kAnonymous = "(anonymous namespace)::";
  for (auto at = name.find(kAnonymous); at != std::string::npos; at = name.find(kAnonymous)) {
    name.erase(at, kAnonymous.size());
  }
  name = name.substr(0, name.find('('));
  const auto scope = name.rfind("::");
  return scope == std::string::npos ? name : name.substr(scope + 2);
}

Check checkModule(const Image& image) {
  return {"the module record and the methods are what the host reads", ModuleCheck(image).run()};
}

}  // namespace macho
