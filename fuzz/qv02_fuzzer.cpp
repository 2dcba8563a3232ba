// The plugin's reader of one profile file: the document in its QV02 tag, and whether it has a tag. Both are compared
// with what a second, plain reader finds in memory.
#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/owned_ref.h"
#include "fuzz/support/fuzzing.h"
#include "fuzz/support/icc_reference.h"
#include "profile/profile_services.h"

namespace {

using fuzz::require;

constexpr std::size_t kDocumentOffset = 8;

OwnedRef<CFStringRef> newText(std::string_view text) {
  return OwnedRef<CFStringRef>::adopt(CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(text.data()),
                                                              static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8,
                                                              false));
}

/// A file, and the URL that the plugin is given for it.
struct ProfileFile {
  fuzz::MemoryFile file;
  OwnedRef<CFURLRef> url = OwnedRef<CFURLRef>::adopt(
      CFURLCreateWithFileSystemPath(nullptr, newText(file.path()).get(), kCFURLPOSIXPathStyle, false));
};

bool isAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

/// Looks for the first tag of the file's own table, if its signature is ASCII.
void checkFirstTag(CFURLRef url, const fuzz::ReferenceProfile& reference) {
  if (reference.lines.empty() || !isAscii(reference.lines.front().signature)) {
    return;
  }
  const std::string_view signature = reference.lines.front().signature;
  require(ProfileServices::ICCTagExists(url, newText(signature).get()) == reference.element(signature).has_value(),
          "a profile has the tags that the plain reader finds");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const ProfileFile profile;
  const std::string_view content(reinterpret_cast<const char*>(data), size);
  profile.file.write(content);

  const auto reference = fuzz::readReference(content);
  const auto element = reference ? reference->element("QV02") : std::nullopt;
  std::optional<std::string> document = "left over";
  const std::int32_t code = ProfileServices::QV02Read(profile.url.get(), document);
  require(code == (element ? kQVINoError : kQVIFailedToReadTag), "the tag is read when the plain reader finds it");
  require(document.has_value() == element.has_value(), "there is a document when there is a tag");
  if (element) {
    require(*document == element->substr(std::min(kDocumentOffset, element->size())),
            "the document is the element without its first eight bytes");
  }
  require(ProfileServices::ICCTagExists(profile.url.get(), newText("QV02").get()) == element.has_value(),
          "a tag exists when it can be read");
  if (reference) {
    checkFirstTag(profile.url.get(), *reference);
  }
  return 0;
}
