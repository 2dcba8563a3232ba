#include "strings/other_foundation.h"

#import <Foundation/Foundation.h>
#include <objc/runtime.h>

@interface NotingString : NSString {
  std::vector<other_foundation::AskedForData>* _asked;
}
- (instancetype)initWithNotes:(std::vector<other_foundation::AskedForData>&)asked;
@end

@implementation NotingString

- (instancetype)initWithNotes:(std::vector<other_foundation::AskedForData>&)asked {
  self = [super init];
  if (self != nil) {
    _asked = &asked;
  }
  return self;
}

- (NSUInteger)length {
  return 0;
}

- (unichar)characterAtIndex:(NSUInteger)index {
  return 0;
}

- (NSData*)dataUsingEncoding:(NSStringEncoding)encoding allowLossyConversion:(BOOL)lossy {
  _asked->push_back({encoding, lossy != NO});
  return nil;
}

@end

namespace other_foundation {
namespace {

BOOL answerNo(id /*self*/, SEL /*selector*/, SEL /*asked*/) { return NO; }
id answerEmptyList(id /*self*/, SEL /*selector*/) { return [NSArray array]; }

void answerRespondsWith(IMP implementation) {
  Method inherited = class_getClassMethod([NSObject class], @selector(instancesRespondToSelector:));
  class_replaceMethod(object_getClass([NSProcessInfo class]), @selector(instancesRespondToSelector:),
                      implementation != nullptr ? implementation : method_getImplementation(inherited),
                      method_getTypeEncoding(inherited));
}

Method countryCodes() { return class_getClassMethod([NSLocale class], @selector(ISOCountryCodes)); }
Method languageCodes() { return class_getClassMethod([NSLocale class], @selector(ISOLanguageCodes)); }

}  // namespace

CFStringRef partOf(std::u16string_view units, std::size_t begin, std::size_t count) {
  NSString* const whole = [NSString stringWithCharacters:reinterpret_cast<const unichar*>(units.data())
                                                  length:units.size()];
  return (CFStringRef)[whole substringWithRange:NSMakeRange(begin, count)];
}

CFStringRef stringThatNotes(std::vector<AskedForData>& asked) {
  return (CFStringRef)[[[NotingString alloc] initWithNotes:asked] autorelease];
}

WithoutVersionQuestion::WithoutVersionQuestion() { answerRespondsWith(reinterpret_cast<IMP>(answerNo)); }
WithoutVersionQuestion::~WithoutVersionQuestion() { answerRespondsWith(nullptr); }

WithoutCodes::WithoutCodes()
    : countries_(reinterpret_cast<void (*)()>(
          method_setImplementation(countryCodes(), reinterpret_cast<IMP>(answerEmptyList)))),
      languages_(reinterpret_cast<void (*)()>(
          method_setImplementation(languageCodes(), reinterpret_cast<IMP>(answerEmptyList)))) {}

WithoutCodes::~WithoutCodes() {
  method_setImplementation(countryCodes(), reinterpret_cast<IMP>(countries_));
  method_setImplementation(languageCodes(), reinterpret_cast<IMP>(languages_));
}

}  // namespace other_foundation
