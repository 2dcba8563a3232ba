// ColorSync's device and profile calls, for computers that are not Macs. Any thread may call them; a callback runs on
// the thread of the call that was given it, before that call returns.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

CF_EXTERN_C_BEGIN

typedef const struct ColorSyncProfile* ColorSyncProfileRef;

// Keys of a (device, profile) entry: strings, a CFUUIDRef, booleans and a file URL.
CF_EXPORT CFStringRef kColorSyncDeviceClass;
CF_EXPORT CFStringRef kColorSyncDeviceID;
CF_EXPORT CFStringRef kColorSyncDeviceDescription;
CF_EXPORT CFStringRef kColorSyncDeviceProfileIsDefault;
CF_EXPORT CFStringRef kColorSyncDeviceProfileIsCurrent;
CF_EXPORT CFStringRef kColorSyncDeviceProfileURL;
/// The value under kColorSyncDeviceClass of a display.
CF_EXPORT CFStringRef kColorSyncDisplayDeviceClass;
/// Key of a custom profile dictionary: the profile of the device's default mode.
CF_EXPORT CFStringRef kColorSyncDeviceDefaultProfileID;

// Keys of an installed profile's entry: its class signature, its description and its file URL.
CF_EXPORT CFStringRef kColorSyncProfileClass;
CF_EXPORT CFStringRef kColorSyncProfileDescription;
CF_EXPORT CFStringRef kColorSyncProfileURL;
/// The value under kColorSyncProfileClass of a display profile.
CF_EXPORT CFStringRef kColorSyncSigDisplayClass;

typedef bool (*ColorSyncDeviceProfileIterateCallback)(CFDictionaryRef colorSyncDeviceProfileInfo, void* userInfo);
/// Calls `callBack` once per (device, profile) entry until it returns false.
CF_EXPORT void ColorSyncIterateDeviceProfiles(ColorSyncDeviceProfileIterateCallback callBack, void* userInfo);

/// Makes the URL under kColorSyncDeviceDefaultProfileID the device's profile; false when that could not be done.
CF_EXPORT bool ColorSyncDeviceSetCustomProfiles(CFStringRef deviceClass, CFUUIDRef deviceID,
                                                CFDictionaryRef profileInfo);

typedef bool (*ColorSyncProfileIterateCallback)(CFDictionaryRef profileInfo, void* userInfo);
/// Calls `callBack` once per installed profile until it returns false. `seed` and `error` are not looked at.
CF_EXPORT void ColorSyncIterateInstalledProfiles(ColorSyncProfileIterateCallback callBack, uint32_t* seed,
                                                 void* userInfo, CFErrorRef* error);

CF_EXPORT CFTypeID ColorSyncProfileGetTypeID(void);
/// Null when the file cannot be read as a profile; `error` is not looked at. The caller releases.
CF_EXPORT ColorSyncProfileRef ColorSyncProfileCreateWithURL(CFURLRef url, CFErrorRef* error);
/// A copy of a tag element's bytes, or null for a null profile, a null signature, or no such tag. The caller releases.
CF_EXPORT CFDataRef ColorSyncProfileCopyTag(ColorSyncProfileRef profile, CFStringRef signature);

// --- displays and their UUIDs

/// Null for the number of an inactive display; the caller releases.
CF_EXPORT CFUUIDRef CGDisplayCreateUUIDFromDisplayID(uint32_t displayID);
/// 0 for any UUID but an active display's.
CF_EXPORT uint32_t CGDisplayGetDisplayIDFromUUID(CFUUIDRef uuid);

CF_EXTERN_C_END
