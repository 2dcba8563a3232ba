#include "frameworks/Foundation/system_version.h"

#import <Foundation/Foundation.h>

#include <tuple>

namespace {

platform::SystemVersion current = platform::kSystemVersion;

}  // namespace

namespace platform {

void setSystemVersion(SystemVersion version) { current = version; }

}  // namespace platform

@implementation NSProcessInfo (OperatingSystemVersion)

- (BOOL)isOperatingSystemAtLeastVersion:(NSOperatingSystemVersion)version {
  return std::tie(current.major, current.minor, current.patch) >=
         std::tie(version.majorVersion, version.minorVersion, version.patchVersion);
}

@end
