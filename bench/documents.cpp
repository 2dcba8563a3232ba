// QV02 documents beside memcpy of the same size.
#include <CoreFoundation/CoreFoundation.h>

#include <cstring>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "groups.h"
#include "profile/profile_services.h"
#include "support/icc_maker.h"
#include "support/temporary_folder.h"

namespace bench {
namespace {

/// Set for the largest. In a small one, the first use of memory weighs more than the copies.
constexpr double kBar = 10;
constexpr long kLargest = 64;
constexpr std::size_t kMebibyte = 1 << 20;

CFURLRef makeUrl(const std::string& path) {
  const CFStringRef text = CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(path.data()),
                                                   static_cast<CFIndex>(path.size()), kCFStringEncodingUTF8, false);
  const CFURLRef url = CFURLCreateWithFileSystemPath(nullptr, text, kCFURLPOSIXPathStyle, false);
  CFRelease(text);
  return url;
}

}  // namespace

void measureDocuments(Suite& suite) {
  for (const long mebibytes : suite.sizes({1, 8, kLargest})) {
    const std::size_t size = static_cast<std::size_t>(mebibytes) * kMebibyte;
    const support::TemporaryFolder folder;
    const CFURLRef url =
        makeUrl(folder.write("a.icc", support::IccMaker().tag("QV02", std::string(8 + size, 'x')).bytes()));
    const std::string source(size, 'x');
    std::string target(size, 'y');
    suite.begin("Documents, MiB", mebibytes);
    suite.compare(
        {"QV02Read", "memcpy of the same size", mebibytes == kLargest ? kBar : 0},
        [=] {
          std::optional<std::string> xml;
          if (ProfileServices::QV02Read(url, xml) != kQVINoError || xml->size() != size) {
            throw std::runtime_error("the document was not read");
          }
        },
        [&] {
          std::memcpy(target.data(), source.data(), size);
          keep(target.data());
        },
        {.rounds = 31, .calls = 1});
    CFRelease(url);
  }
}

}  // namespace bench
