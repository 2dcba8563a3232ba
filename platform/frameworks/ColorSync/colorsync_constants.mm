// ColorSync's constants. Keys are only ever compared with one another; the two signatures are ICC's and are compared
// with what profiles contain.
#include <ColorSync/ColorSync.h>

#import <Foundation/Foundation.h>

#define STRING_CONSTANT(name, text) CFStringRef name = (CFStringRef)text

extern "C" {

STRING_CONSTANT(kColorSyncDeviceClass, @"DeviceClass");
STRING_CONSTANT(kColorSyncDeviceID, @"DeviceID");
STRING_CONSTANT(kColorSyncDeviceDescription, @"DeviceDescription");
STRING_CONSTANT(kColorSyncDeviceProfileIsDefault, @"DeviceProfileIsDefault");
STRING_CONSTANT(kColorSyncDeviceProfileIsCurrent, @"DeviceProfileIsCurrent");
STRING_CONSTANT(kColorSyncDeviceProfileURL, @"DeviceProfileURL");
STRING_CONSTANT(kColorSyncDeviceDefaultProfileID, @"DeviceDefaultProfileID");

STRING_CONSTANT(kColorSyncProfileClass, @"com.apple.ColorSync.ProfileClass");
STRING_CONSTANT(kColorSyncProfileDescription, @"com.apple.ColorSync.ProfileDescription");
STRING_CONSTANT(kColorSyncProfileURL, @"com.apple.ColorSync.ProfileURL");

STRING_CONSTANT(kColorSyncDisplayDeviceClass, @"mntr");
STRING_CONSTANT(kColorSyncSigDisplayClass, @"mntr");

}  // extern "C"
