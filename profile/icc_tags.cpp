#include <ColorSync/ColorSync.h>

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/owned_ref.h"
#include "profile/profile_services.h"
#include "strings/utils.h"

namespace ProfileServices {
namespace {

using OwnedProfile = OwnedRef<ColorSyncProfileRef>;
using OwnedData = OwnedRef<CFDataRef>;

/// The document begins after the tag's type signature and four reserved bytes, which are not examined.
constexpr std::size_t kDocumentOffset = 8;

OwnedProfile openProfile(CFURLRef url) {
  if (url == nullptr) {
    return {};
  }
  return OwnedProfile::adopt(ColorSyncProfileCreateWithURL(url, nullptr));
}

/// Owns nothing when there is no such tag.
OwnedData copyTag(const OwnedProfile& profile, CFStringRef signature) {
  if (!profile || signature == nullptr) {
    return {};
  }
  return OwnedData::adopt(ColorSyncProfileCopyTag(profile.get(), signature));
}

/// Bytes that are copied at a time; they stay in the processor's cache.
constexpr std::size_t kPiece = 1 << 20;

/// The document in an element, copied through a byte vector in cache-sized pieces, so that the text's memory is faulted
/// in as it grows. Nothing when the data has no bytes to point to.
std::optional<std::string> documentIn(CFDataRef element) {
  const CFIndex length = CFDataGetLength(element);
  auto* const bytes = const_cast<unsigned char*>(CFDataGetBytePtr(element));
  if (length < 0 || (bytes == nullptr && length > 0)) {
    return std::nullopt;
  }
  const auto size = static_cast<std::size_t>(length);
  std::string text;
  text.reserve(size);
  std::vector<unsigned char> piece;
  piece.reserve(std::min(size, kPiece));
  for (std::size_t begin = 0; begin < size; begin += piece.size()) {
    piece.clear();
    Utils::appendBytes(piece, bytes + begin, std::min(kPiece, size - begin));
    const std::size_t skipped = begin == 0 ? std::min(kDocumentOffset, piece.size()) : 0;
    text.append(reinterpret_cast<const char*>(piece.data()) + skipped, piece.size() - skipped);
  }
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
  // Deliberate: the tag is copied again, and this second copy is used.
  const OwnedData element = copyTag(opened, signature);
  auto document = element ? documentIn(element.get()) : std::nullopt;
  if (!document) {
    xml.reset();
    return kQVIFailedToReadTag;
  }
  xml = std::move(document);
  return kQVINoError;
}

}  // namespace ProfileServices
