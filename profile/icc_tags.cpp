#include <ColorSync/ColorSync.h>

#include <algorithm>
#include <vector>

#include "profile/large_memory.h"
#include "profile/profile_services.h"
#include "strings/owned_ref.h"
#include "strings/utils.h"

namespace ProfileServices {
namespace {

using OwnedProfile = OwnedRef<ColorSyncProfileRef>;
using OwnedData = OwnedRef<CFDataRef>;

/// The document begins after the tag's type signature and four reserved bytes, which are not examined.
constexpr std::size_t kDocumentOffset = 8;

OwnedProfile openProfile(CFURLRef url) {
  return url == nullptr ? OwnedProfile() : OwnedProfile::adopt(ColorSyncProfileCreateWithURL(url, nullptr));
}

/// Owns nothing when there is no such tag.
OwnedData copyTag(const OwnedProfile& profile, CFStringRef signature) {
  if (!profile || signature == nullptr) {
    return {};
  }
  return OwnedData::adopt(ColorSyncProfileCopyTag(profile.get(), signature));
}

std::string textFrom(const std::vector<unsigned char>& bytes, std::size_t begin) {
  const std::size_t size = bytes.size() - begin;
  std::string text;
  text.reserve(size);
  aboutToFill(text.data(), size);
  text.assign(reinterpret_cast<const char*>(bytes.data()) + begin, size);
  return text;
}

}  // namespace

bool ICCTagExists(CFURLRef profile, CFStringRef signature) {
  return static_cast<bool>(copyTag(openProfile(profile), signature));
}

std::int32_t QV02Read(CFURLRef profile, std::optional<std::string>& xml) {
  const OwnedProfile opened = openProfile(profile);
  const CFStringRef signature = CFSTR("QV02");
  if (!copyTag(opened, signature)) {
    xml.reset();
    return kQVIFailedToReadTag;
  }
  // Deliberate: the tag is asked for again, and this second copy is the one that counts.
  const OwnedData element = copyTag(opened, signature);
  if (!element) {
    xml.reset();
    return kQVIFailedToReadTag;
  }
  const auto size = static_cast<std::size_t>(CFDataGetLength(element.get()));
  std::vector<unsigned char> bytes;
  bytes.reserve(size);
  aboutToFill(bytes.data(), size);
  Utils::appendBytes(bytes, const_cast<unsigned char*>(CFDataGetBytePtr(element.get())), size);
  xml = textFrom(bytes, std::min(kDocumentOffset, size));
  return kQVINoError;
}

}  // namespace ProfileServices
