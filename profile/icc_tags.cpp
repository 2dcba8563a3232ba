#include <ColorSync/ColorSync.h>

#include <algorithm>
#include <vector>

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
  std::vector<unsigned char> bytes;
  Utils::appendBytes(bytes, const_cast<unsigned char*>(CFDataGetBytePtr(element.get())),
                     static_cast<unsigned long>(CFDataGetLength(element.get())));
  const std::size_t begin = std::min(kDocumentOffset, bytes.size());
  xml.emplace(reinterpret_cast<const char*>(bytes.data()) + begin, bytes.size() - begin);
  return kQVINoError;
}

}  // namespace ProfileServices
