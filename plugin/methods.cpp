// The module: a wrapper for each method, the table that binds it to its declaration, and the library's entry
// (plugin/entry.h).
//
// The host calls a wrapper on its own thread. A wrapper converts host values to native ones, calls the facade, and
// converts the result back. Nothing below is meant to throw, and no handler is installed here.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <optional>
#include <string>
#include <tuple>
#include <utility>

#include "host/arrays.h"
#include "host/call.h"
#include "host/objects.h"
#include "host/records.h"
#include "host/runtime.h"
#include "host/strings.h"
#include "plugin/display.h"
#include "plugin/entry.h"
#include "strings/utils.h"

REALobjectStruct* gHostObj = nullptr;

namespace {

/// The declaration of the event's method.
constexpr const char* kProfileFound = "DisplayProfileFound( name as String, path as String )";

/// The upper bound of an empty array.
constexpr std::int64_t kEmptyArray = -1;

/// A new host string of UTF-8 bytes, which are not validated. Truncates at INT_MAX, the host's length type.
REALstringStruct* hostString(const char* bytes, std::size_t length) {
  constexpr std::size_t kLongest = std::numeric_limits<int>::max();
  return REALBuildStringWithEncoding(bytes, static_cast<int>(std::min(length, kLongest)), kHostEncodingUTF8);
}

REALstringStruct* hostString(const std::string& text) { return hostString(text.data(), text.size()); }

/// Stores a new string in a by-reference argument, which then owns it. The old string is released only now that the new
/// one exists; a null one is passed to the host as it is.
void store(REALstringStruct** slot, REALstringStruct* string) {
  REALUnlockString(*slot);
  *slot = string;
}

/// The host's own bytes, valid during the call of the wrapper; null for a null string.
const char* contents(REALstringStruct* string) { return REALGetStringContents(string, nullptr); }

/// The same, as a text; a null string is an empty one.
std::string textOf(REALstringStruct* string) {
  const char* const bytes = contents(string);
  return bytes == nullptr ? std::string() : std::string(bytes);
}

// --- names, as the two kinds of profile map hold them

const std::string& nameIn(const std::string& name) { return name; }
const std::string& nameIn(const std::tuple<std::string, bool, bool>& entry) { return std::get<0>(entry); }

/// Calls the object's method once per profile, by path, for the object that is set at that moment: an event may set
/// another. The host owns the strings; without such a method they are deliberately made all the same, and leak.
/// `profiles` is the caller's own copy: the event may call back into the plugin.
template <typename Profiles>
void raiseProfileFound(const Profiles& profiles) {
  // Deliberately loaded once, and from a null object too.
  void* const found = REALLoadObjectMethod(gHostObj, kProfileFound);
  for (const auto& [path, entry] : profiles) {
    REALstringStruct* const name_string = hostString(nameIn(entry));
    REALstringStruct* const path_string = hostString(path);
    if (found != nullptr) {
      host::invoke<void>(found, gHostObj, name_string, path_string);
    }
  }
}

/// A host array of the profiles' paths, by name. The array and its strings are the host's.
template <typename Profiles>
REALarrayStruct* pathsByName(const Profiles& profiles) {
  const auto flipped = Utils::flip_map(profiles);
  REALarrayStruct* const array = REALCreateArray(kHostArrayOfStrings, kEmptyArray);
  std::int64_t index = 0;
  for (const auto& [entry, path] : flipped) {
    REALInsertArrayValueString(array, index, hostString(path));
    ++index;
  }
  return array;
}

// --- the wrappers, in the table's order

/// Takes no reference on the new object and releases nothing on the old one.
void RBA_OstrevinSetObject(REALobjectStruct* object) { gHostObj = object; }

void RB_ListAllInstalledProfiles() { raiseProfileFound(Display::ListAllInstalledProfiles()); }

void RB_ListDisplayProfiles(std::uint32_t displayID) { raiseProfileFound(Display::ListProfilesForDisplay(displayID)); }

void RB_GetName(std::uint32_t displayID, REALstringStruct** name) {
  const char* const text = Display::GetName(displayID);
  store(name, hostString(text, std::strlen(text)));
}

void RB_GetRect(std::uint32_t displayID, std::int32_t* left, std::int32_t* top, std::int32_t* right,
                std::int32_t* bottom) {
  Display::GetMonitorRect(displayID, left, top, right, bottom);
}

void RB_GetCGRect(std::uint32_t displayID, double* x, double* y, double* width, double* height) {
  Display::GetMonitorRect(displayID, x, y, width, height);
}

void RB_GetProfilePath(std::uint32_t displayID, REALstringStruct** path) {
  const char* const text = Display::GetProfilePath(displayID);
  store(path, hostString(text, std::strlen(text)));
}

std::uint32_t RB_GetIndex(std::uint32_t displayID) { return Display::GetIndex(displayID); }

double RB_GetScale(std::uint32_t displayID) { return Display::GetScale(displayID); }

bool RB_SetProfile(std::uint32_t displayID, REALstringStruct* path) {
  return Display::SetProfile(displayID, contents(path));
}

std::uint32_t RB_DisplayIDForWindow(std::int32_t left, std::int32_t top, std::int32_t width, std::int32_t height) {
  return Display::DisplayIDForWindow(left, top, width, height);
}

REALarrayStruct* RB_GetInstalledProfilePathsArray() { return pathsByName(Display::ListAllInstalledProfiles()); }

REALarrayStruct* RB_GetAssociatedProfilePathsArray(std::uint32_t displayID) {
  return pathsByName(Display::ListProfilesForDisplay(displayID));
}

bool RB_ICCTagExists(REALstringStruct* path, REALstringStruct* tag) {
  std::string path_text = textOf(path);  // before the tag's: arguments would be made in any order
  std::string tag_text = textOf(tag);
  return Display::ICCTagExists(std::move(path_text), std::move(tag_text));
}

std::int32_t RB_QV02Read(REALstringStruct* path, REALstringStruct** xmlString) {
  std::optional<std::string> xml;
  const std::int32_t code = Display::QV02Read(contents(path), xml);
  store(xmlString, xml ? hostString(*xml) : hostString("", 0));
  return code;
}

}  // namespace

// --- the table: the host's declaration of each method and its function, whose parameters follow it exactly

#define METHOD(declaration, function)                                     \
  {                                                                       \
    reinterpret_cast<REALfunction>(&(function)), nullptr, declaration, {} \
  }

// The host parses the declarations, which deliberately keep their irregular blanks and capitals.
// clang-format off
REALmethodDefinition DisplayModuleMethods[] = {
    METHOD("SetObject( obj As Object )", RBA_OstrevinSetObject),
    METHOD("ListAllInstalledProfiles()", RB_ListAllInstalledProfiles),
    METHOD("ListDisplayProfiles(displayID As UInt32)", RB_ListDisplayProfiles),
    METHOD("GetName(displayID As UInt32, byref name As String)", RB_GetName),
    METHOD("GetRect(displayID As UInt32, byref left As Integer, byref top As Integer, byref right As Integer, byref bottom As Integer)", RB_GetRect),
    METHOD("GetCGRect(displayID As UInt32, byref x As Double, byref y As Double, byref width As Double, byref height As Double)", RB_GetCGRect),
    METHOD("GetProfilePath(displayID As UInt32, byref path As String)", RB_GetProfilePath),
    METHOD("GetIndex(displayID As UInt32) As UInt32", RB_GetIndex),
    METHOD("GetScale(displayID As UInt32) As Double", RB_GetScale),
    METHOD("SetProfile(displayID As UInt32, path As String) As Boolean", RB_SetProfile),
    METHOD("DisplayIDForWindow(left as Integer, top as Integer, width as Integer, height as Integer) As UInt32", RB_DisplayIDForWindow),
    METHOD("GetInstalledProfilePathsArray() As String()", RB_GetInstalledProfilePathsArray),
    METHOD("GetAssociatedProfilePathsArray(displayID As UInt32) As String()", RB_GetAssociatedProfilePathsArray),
    METHOD("ICCTagExists(path As String, tag As String) As Boolean", RB_ICCTagExists),
    METHOD("QV02Read(path As String, byref xmlString As String) As Integer", RB_QV02Read),
};
// clang-format on

#undef METHOD

constinit REALmoduleDefinition DisplayModuleDefinition = {
    .version = kHostInterfaceVersion,
    .name = "Ostrevin",
    .methods = DisplayModuleMethods,
    .methodCount = std::size(DisplayModuleMethods),
};

// --- the library's entry

void PluginEntry() { REALRegisterModule(&DisplayModuleDefinition); }

void REALPluginMain(REALresolver resolver) {
  gResolver = resolver;
  host::invoke<void>(CallResolver("RegisterPluginVersion"), static_cast<int>(kHostInterfaceVersion));
  PluginEntry();
}

const double OstrevinVersionNumber = 5.4;
const char OstrevinVersionString[] = "@(#)PROGRAM:Ostrevin  PROJECT:Ostrevin-5.4\n";
