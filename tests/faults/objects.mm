#include "faults/fault_values.h"

#import <Foundation/Foundation.h>

#include <stdexcept>

#include "frameworks/CoreFoundation/uuids.h"

namespace faults {
namespace {

CFTypeRef leaked(id object) { return [object retain]; }

std::vector<NamedObject> makeSamples() {
  NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
  const unsigned char bytes[16] = {'d', 'a', 't', 'a'};
  NSDictionary* const dictionary = [NSDictionary dictionaryWithObject:@"value" forKey:@"key"];
  std::vector<NamedObject> samples = {
      {"a string", leaked(@"another text")},
      {"a number", leaked([NSNumber numberWithInt:7])},
      {"a boolean", leaked([NSNumber numberWithBool:YES])},
      {"a URL", leaked([NSURL fileURLWithPath:@"/another/file" isDirectory:NO])},
      {"data", leaked([NSData dataWithBytes:bytes length:sizeof bytes])},
      {"a dictionary", leaked(dictionary)},
      {"a UUID", platform::makeUuid({0xEE})},
      {"an array", leaked([NSArray arrayWithObject:[NSNumber numberWithInt:7]])},
      {"an object", leaked([[[NSObject alloc] init] autorelease])},
  };
  [pool release];
  return samples;
}

}  // namespace

const std::vector<NamedObject>& sampleObjects() {
  static const auto* const samples = new std::vector<NamedObject>(makeSamples());
  return *samples;
}

CFTypeRef sampleObject(const std::string& name) {
  for (const NamedObject& sample : sampleObjects()) {
    if (sample.name == name) {
      return sample.object;
    }
  }
  throw std::out_of_range(name);
}

CFStringRef emptyString() { return reinterpret_cast<CFStringRef>(@""); }

CFStringRef brokenString() {
  // Foundation makes no such string from half a pair itself; a part of a string may be one.
  static NSString* const string = [[[NSString stringWithUTF8String:"\U0001F600"] substringToIndex:1] retain];
  return reinterpret_cast<CFStringRef>(string);
}

CFTypeRef emptyArray() {
  static NSArray* const array = [[NSArray alloc] init];
  return array;
}

CFDictionaryRef emptyDictionary() {
  static NSDictionary* const dictionary = [[NSDictionary alloc] init];
  return reinterpret_cast<CFDictionaryRef>(dictionary);
}

CFDictionaryRef mutableDictionary() {
  static NSMutableDictionary* const dictionary = [[NSMutableDictionary alloc] init];
  return reinterpret_cast<CFDictionaryRef>(dictionary);
}

CFDataRef emptyData() {
  static NSData* const data = [[NSData alloc] init];
  return reinterpret_cast<CFDataRef>(data);
}

CFDataRef shortData() {
  static NSData* const data = [[NSData alloc] initWithBytes:"1234567" length:7];
  return reinterpret_cast<CFDataRef>(data);
}

}  // namespace faults
