// Host texts. Their argument lists are this host's own choice, after those of strings.
#include "devhost/entries/entries.h"
#include "devhost/entries/entry_values.h"

namespace devhost {
namespace {

struct TextData {
  const void* bytes;
  std::int64_t size;
  std::uint32_t encoding;
  void* text;  ///< the host's own note: the text that the bytes belong to
};

Text* find(const void* handle, const char* where) { return Host::current().handles().find<Text>(handle, where); }

std::string contents(const void* handle, const char* where) {
  const Text* const found = find(handle, where);
  return found == nullptr ? std::string() : found->utf8();
}

void* buildText(const char* bytes, int length, std::uint32_t encoding) {
  if (encoding != kUtf8Encoding || length < 0 || (bytes == nullptr && length > 0)) {
    Host::current().handles().addFault("PluginBuildText: " + std::to_string(length) + " bytes in encoding " +
                                       std::to_string(encoding));
    return nullptr;
  }
  return give(
      Host::current().makeText(length == 0 ? std::string() : std::string(bytes, static_cast<std::size_t>(length))));
}

void lockText(void* text) {
  if (Text* const found = find(text, "PluginLockText")) {
    found->addPluginReference();
  }
}

void unlockText(void* text) { Host::current().handles().release(text, Counted::Kind::kText, "PluginUnlockText"); }

std::int64_t compareTexts(void* a, void* b) {
  return contents(a, "PluginCompareText").compare(contents(b, "PluginCompareText"));
}

void* concatenateTexts(void* a, void* b) {
  return give(Host::current().makeText(contents(a, "PluginConcatenateText") + contents(b, "PluginConcatenateText")));
}

std::uint64_t textData(void* text, std::uint32_t encoding, TextData* data) {
  Text* const found = find(text, "PluginGetTextData");
  if (found == nullptr || data == nullptr || (encoding != 0 && encoding != kUtf8Encoding)) {
    return 0;
  }
  found->addHostReference();
  *data = {found->utf8().data(), static_cast<std::int64_t>(found->utf8().size()), kUtf8Encoding, text};
  return 1;
}

void disposeTextData(TextData* data) {
  if (data == nullptr) {
    return;
  }
  if (Text* const found = find(data->text, "PluginDisposeTextData")) {
    found->dropHostReference();
  }
  *data = {};
}

const Entry kEntries[] = {
    entry("PluginBuildText", buildText),               // (const char* bytes, int length, uint32 UTF-8) -> new text
    entry("PluginLockText", lockText),                 // (text)
    entry("PluginUnlockText", unlockText),             // (text)
    entry("PluginCompareText", compareTexts),          // (text, text) -> int
    entry("PluginConcatenateText", concatenateTexts),  // (text, text) -> new text
    entry("PluginGetTextData", textData),              // (text, uint32 UTF-8 or 0, TextData*) -> bool
    entry("PluginDisposeTextData", disposeTextData),   // (TextData*)
};

}  // namespace

void addTextEntries(Host& host) { addEntries(host, kEntries); }

}  // namespace devhost
