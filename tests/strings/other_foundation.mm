#include "strings/other_foundation.h"

#import <Foundation/Foundation.h>
#include <objc/runtime.h>

@interface NotingString : NSString {
  other_foundation::Notes* _notes;
}
- (instancetype)initWithNotes:(other_foundation::Notes&)notes;
@end

@implementation NotingString

- (instancetype)initWithNotes:(other_foundation::Notes&)notes {
  self = [super init];
  if (self != nil) {
    _notes = &notes;
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
  _notes->data.push_back({encoding, lossy != NO});
  return nil;
}

- (BOOL)containsString:(NSString*)part {
  _notes->searches.emplace_back("containsString:");
  return NO;
}

- (NSRange)rangeOfString:(NSString*)part {
  _notes->searches.emplace_back("rangeOfString:");
  return NSMakeRange(NSNotFound, 0);
}

@end

namespace other_foundation {
namespace {

BOOL returnNo(id /*self*/, SEL /*selector*/, SEL /*asked*/) { return NO; }
id returnEmptyList(id /*self*/, SEL /*selector*/) { return [NSArray array]; }
// By way of void (*)(), since compilers warn of other casts between signatures.
const IMP kReturnNo = reinterpret_cast<IMP>(reinterpret_cast<void (*)()>(returnNo));
const IMP kReturnEmptyList = reinterpret_cast<IMP>(reinterpret_cast<void (*)()>(returnEmptyList));

void replaceRespondsWith(IMP implementation) {
  Method inherited = class_getClassMethod([NSObject class], @selector(instancesRespondToSelector:));
  class_replaceMethod(object_getClass([NSProcessInfo class]), @selector(instancesRespondToSelector:),
                      implementation != nullptr ? implementation : method_getImplementation(inherited),
                      method_getTypeEncoding(inherited));
}

Method countryCodes() { return class_getClassMethod([NSLocale class], @selector(ISOCountryCodes)); }
Method languageCodes() { return class_getClassMethod([NSLocale class], @selector(ISOLanguageCodes)); }

}  // namespace

CFStringRef notingString(Notes& notes) { return (CFStringRef)[[[NotingString alloc] initWithNotes:notes] autorelease]; }

WithoutVersionQuestion::WithoutVersionQuestion() { replaceRespondsWith(kReturnNo); }
WithoutVersionQuestion::~WithoutVersionQuestion() { replaceRespondsWith(nullptr); }

WithoutCodes::WithoutCodes()
    : countries_(reinterpret_cast<void (*)()>(method_setImplementation(countryCodes(), kReturnEmptyList))),
      languages_(reinterpret_cast<void (*)()>(method_setImplementation(languageCodes(), kReturnEmptyList))) {}

WithoutCodes::~WithoutCodes() {
  method_setImplementation(countryCodes(), reinterpret_cast<IMP>(countries_));
  method_setImplementation(languageCodes(), reinterpret_cast<IMP>(languages_));
}

}  // namespace other_foundation
