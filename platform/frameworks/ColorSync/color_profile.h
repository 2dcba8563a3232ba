// The object behind a ColorSyncProfileRef. Objective-C++ only.
#pragma once

#import <Foundation/Foundation.h>

#include <cstdint>
#include <mutex>
#include <string>

#include "desktop/icc/icc_profile.h"

/// An opened profile: the reader of its file, and the tag element that was copied last. It keeps no file open, so one
/// that is never released costs no more than memory: at most IccProfile::kKeptSize, unless a tag is copied. Any thread
/// may message it.
@interface PlatformColorProfile : NSObject {
  const platform::desktop::IccProfile* _reader;
  std::mutex* _mutex;
  std::uint32_t _signature;
  NSData* _element;
}
/// Null when the file cannot be read as a profile. See IccProfile::open.
- (instancetype)initWithPath:(const std::string&)path isRegularFile:(BOOL)isRegularFile;
- (const platform::desktop::IccProfile&)reader;
/// The tag's element. Successive copies of one tag are the same immutable object. The caller releases; null when there
/// is no such tag, or when it lies behind what the reader keeps and the file has changed since it was opened.
- (NSData*)copyElement:(std::uint32_t)signature;
@end
