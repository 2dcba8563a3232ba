// Host strings.
#include <cstring>

#include "devhost/entries/entries.h"
#include "devhost/entries/entry_values.h"

namespace devhost {
namespace {

/// What a plugin gets of a string's bytes until it disposes of it.
struct StringData {
  const void* bytes;
  std::int64_t size;
  std::uint32_t encoding;
  void* string;  ///< the host's own note: the string that the bytes belong to
};

String* find(const void* handle, const char* where) { return Host::current().handles().find<String>(handle, where); }

void* build(const char* bytes, int length, std::uint32_t encoding) {
  if (length < 0 || (bytes == nullptr && length > 0)) {
    Host::current().handles().addFault("building a string: " + std::to_string(length) + " bytes at " +
                                       (bytes == nullptr ? "null" : "an address"));
    return nullptr;
  }
  std::string copy = length == 0 ? std::string() : std::string(bytes, static_cast<std::size_t>(length));
  return give(Host::current().makeString(std::move(copy), encoding));
}

void* buildString(const char* bytes, int length) { return build(bytes, length, kUtf8Encoding); }

void lockString(void* string) {
  if (String* const found = find(string, "REALLockString")) {
    found->addPluginReference();
  }
}

void unlockString(void* string) {
  Host::current().handles().release(string, Counted::Kind::kString, "REALUnlockString");
}

std::uint64_t stringEncoding(void* string) {
  const String* const found = find(string, "REALGetStringEncoding");
  return found == nullptr ? 0 : found->encoding();
}

void setStringEncoding(void* string, std::uint32_t encoding) {
  if (String* const found = find(string, "REALSetStringEncoding")) {
    found->setEncoding(encoding);
  }
}

std::uint64_t systemTextEncoding() { return kUtf8Encoding; }

/// Only in the string's own encoding, or in any with `encoding` 0. The bytes stay until they are disposed of.
std::uint64_t stringData(void* string, std::uint32_t encoding, StringData* data) {
  String* const found = find(string, "PluginGetStringData");
  if (found == nullptr || data == nullptr || (encoding != 0 && encoding != found->encoding())) {
    return 0;
  }
  found->addHostReference();
  *data = {found->bytes().data(), static_cast<std::int64_t>(found->bytes().size()), found->encoding(), string};
  return 1;
}

void disposeStringData(StringData* data) {
  if (data == nullptr) {
    return;
  }
  if (String* const found = find(data->string, "PluginDisposeStringData")) {
    found->dropHostReference();
  }
  *data = {};
}

/// Negative, zero or positive by the bytes; nil is equal to the empty string.
std::int64_t compareStrings(void* a, void* b) {
  const String* const left = find(a, "RuntimeStringCompare");
  const String* const right = find(b, "RuntimeStringCompare");
  return (left == nullptr ? std::string() : left->bytes()).compare(right == nullptr ? std::string() : right->bytes());
}

void* addStrings(void* a, void* b) {
  const String* const left = find(a, "RuntimeAddString");
  const String* const right = find(b, "RuntimeAddString");
  const std::uint32_t encoding = left != nullptr    ? left->encoding()
                                 : right != nullptr ? right->encoding()
                                                    : kUtf8Encoding;
  return give(Host::current().makeString(
      (left == nullptr ? "" : left->bytes()) + (right == nullptr ? "" : right->bytes()), encoding));
}

/// As a caption is shown: "&" marks the letter that follows it, and "&&" stands for one "&". Null for nil.
void* stripAmpersands(void* string) {
  const String* const found = find(string, "REALStripAmpersands");
  if (found == nullptr) {
    return nullptr;
  }
  std::string shown;
  bool after_mark = false;
  for (const char byte : found->bytes()) {
    after_mark = byte == '&' && !after_mark;
    if (!after_mark) {
      shown += byte;
    }
  }
  return give(Host::current().makeString(std::move(shown), found->encoding()));
}

const char* cString(void* string) {
  const String* const found = find(string, "StringGetCString");
  return found == nullptr ? nullptr : found->bytes().c_str();
}

const unsigned char* pascalString(void* string) {
  String* const found = find(string, "StringGetPString");
  return found == nullptr ? nullptr : found->pascalBytes();
}

/// The first four bytes, the first one highest; blanks stand for missing ones.
std::uint64_t osType(void* string) {
  const String* const found = find(string, "StringToOSType");
  std::string bytes = found == nullptr ? std::string() : found->bytes();
  bytes.resize(4, ' ');
  std::uint64_t code = 0;
  for (const char byte : bytes) {
    code = code << 8U | static_cast<unsigned char>(byte);
  }
  return code;
}

std::int64_t lenB(void* string) {
  const String* const found = find(string, "LenB");
  return found == nullptr ? 0 : static_cast<std::int64_t>(found->bytes().size());
}

const Entry kEntries[] = {
    entry("REALBuildString", buildString),           // (const char* bytes, int length) -> new string, UTF-8
    entry("REALBuildStringWithEncoding", build),     // (const char* bytes, int length, uint32 encoding) -> new string
    entry("REALLockString", lockString),             // (string)
    entry("REALUnlockString", unlockString),         // (string)
    entry("REALGetStringEncoding", stringEncoding),  // (string) -> uint32
    entry("REALSetStringEncoding", setStringEncoding),  // (string, uint32 encoding)
    entry("REALGetSystemTextEncoding", systemTextEncoding),
    entry("PluginGetStringData", stringData),             // (string, uint32 encoding or 0, StringData*) -> bool
    entry("PluginDisposeStringData", disposeStringData),  // (StringData*)
    entry("RuntimeStringCompare", compareStrings),        // (string, string) -> int
    entry("RuntimeAddString", addStrings),                // (string, string) -> new string
    entry("REALStripAmpersands", stripAmpersands),        // (string) -> new string
    entry("StringGetCString", cString),                   // (string) -> const char*, borrowed
    entry("StringGetPString", pascalString),              // (string) -> const unsigned char*, borrowed
    entry("StringToOSType", osType),                      // (string) -> uint32
};

}  // namespace

void addStringEntries(Host& host) {
  addEntries(host, kEntries);
  host.globalMethods().set("LenB( s as string ) as integer", lenB);
}

}  // namespace devhost
