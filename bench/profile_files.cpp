// Tags of one file beside lcms2, and QV02 documents beside memcpy of the same size.
#include <CoreFoundation/CoreFoundation.h>
#include <lcms2.h>

#include <cstring>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "groups.h"
#include "plugin_methods.h"
#include "profile/profile_services.h"
#include "support/icc_maker.h"
#include "support/temporary_folder.h"

namespace bench {
namespace {

/// The tag that is looked for is the last one.
Pair tagPair(long tags) {
  const auto folder = std::make_shared<const support::TemporaryFolder>();
  support::IccMaker maker;
  for (long i = 0; i + 1 < tags; ++i) {
    maker.tag("t" + std::to_string(100 + i), support::textElement("text"));
  }
  const std::string file = folder->write("tags.icc", maker.tag("last", support::textElement("text")).bytes());
  auto* const exists = pluginMethod<bool(const char*, const char*)>("ICCTagExists");
  const auto lcms_exists = [file] {
    const cmsHPROFILE profile = cmsOpenProfileFromFile(file.c_str(), "r");
    const bool result = cmsIsTag(profile, static_cast<cmsTagSignature>(0x6C617374)) != FALSE;
    cmsCloseProfile(profile);
    return result;
  };
  if (!exists(file.c_str(), "last") || !lcms_exists()) {
    throw std::runtime_error("the tag was not found");
  }
  return pairOf([=, kept = folder] { keep(exists(file.c_str(), "last")); }, [=] { keep(lcms_exists()); },
                {.rounds = 101, .calls = 20});
}

using Url = std::shared_ptr<const __CFURL>;

Url urlOf(const std::string& path) {
  const CFStringRef text = CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(path.data()),
                                                   static_cast<CFIndex>(path.size()), kCFStringEncodingUTF8, false);
  const CFURLRef url = CFURLCreateWithFileSystemPath(nullptr, text, kCFURLPOSIXPathStyle, false);
  CFRelease(text);
  return {url, CFRelease};
}

Pair documentPair(std::size_t size) {
  const auto folder = std::make_shared<const support::TemporaryFolder>();
  const Url url = urlOf(folder->write("a.icc", support::IccMaker().tag("QV02", std::string(8 + size, 'x')).bytes()));
  const auto target = std::make_shared<std::string>(size, 'y');
  return pairOf(
      [=, kept = folder] {
        std::optional<std::string> xml;
        if (ProfileServices::QV02Read(url.get(), xml) != kQVINoError || xml->size() != size) {
          throw std::runtime_error("the document was not read");
        }
      },
      [target, source = std::string(size, 'x')] {
        std::memcpy(target->data(), source.data(), source.size());
        keep(target->data());
      },
      {.rounds = 31, .calls = 1});
}

}  // namespace

void addProfileFiles(const Suite& suite) {
  constexpr double kTagBar = 1.2;
  for (const long tags : suite.sizes({10, 100})) {
    suite.add({"ICCTagExists", tags, "tags", "lcms2: open, look for the tag, close", kTagBar},
              [tags] { return tagPair(tags); });
  }
  // The bar is for the largest: in a small document, the first use of memory costs more than the copies.
  constexpr double kDocumentBar = 10;
  constexpr long kLargest = 64;
  constexpr std::size_t kMebibyte = 1 << 20;
  for (const long mebibytes : suite.sizes({1, 8, kLargest})) {
    suite.add({"QV02Read", mebibytes, "MiB", "memcpy of the same size", mebibytes == kLargest ? kDocumentBar : 0},
              [mebibytes] { return documentPair(static_cast<std::size_t>(mebibytes) * kMebibyte); });
  }
}

}  // namespace bench
