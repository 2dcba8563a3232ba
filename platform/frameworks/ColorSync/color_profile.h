// The object behind a ColorSyncProfileRef. Objective-C++ only.
#pragma once

#import <Foundation/Foundation.h>

#include <cstdint>
#include <mutex>
#include <string>

/// An opened profile: where its file is, and the tag element that was asked for last. It holds no open file, so one
/// that is never released costs no more than memory. Any thread may message it.
@interface PlatformColorProfile : NSObject {
  std::string* _path;
  std::mutex* _mutex;
  std::uint32_t _signature;
  NSData* _element;
}
/// Null when the file cannot be read as a profile.
- (instancetype)initWithPath:(const std::string&)path;
- (const std::string&)path;
/// The tag's element as the file holds it at the first of successive calls for one tag: a second copy of the same tag
/// is the same immutable object. The caller releases; null when there is no such tag.
- (NSData*)copyElement:(std::uint32_t)signature;
@end
