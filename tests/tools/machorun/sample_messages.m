// Messages, compiled for the Mac without its headers.
#define EXPORT __attribute__((visibility("default")))

typedef struct {
  unsigned long location;
  unsigned long length;
} Range;
typedef struct {
  double values[4];
} Rectangle;

__attribute__((objc_root_class))
@interface NSObject
+ (Class)class;
- (_Bool)lowByteOf:(unsigned long)number;
@end
@interface NSString : NSObject
+ (id)stringWithUTF8String:(const char *)text;
- (unsigned long)length;
- (const char *)UTF8String;
- (Range)rangeOfString:(NSString *)part;
- (double)doubleValue;
@end
@interface NSValue : NSObject
+ (id)valueWithRect:(Rectangle)rectangle;
- (Rectangle)rectValue;
@end

extern Class object_getClass(id object);

EXPORT unsigned long constantLength(void) { return [@"constant" length]; }
EXPORT const char *constantText(void) { return [@"constant" UTF8String]; }
EXPORT unsigned long madeLength(const char *text) { return [[NSString stringWithUTF8String:text] length]; }
EXPORT unsigned long placeInConstant(const char *part) {
  return [@"constant" rangeOfString:[NSString stringWithUTF8String:part]].location;
}
EXPORT double number(const char *text) { return [[NSString stringWithUTF8String:text] doubleValue]; }
EXPORT double sumOfRectangle(double a, double b, double c, double d) {
  const Rectangle made = {{a, b, c, d}};
  const Rectangle found = [[NSValue valueWithRect:made] rectValue];
  return found.values[0] + found.values[1] + found.values[2] + found.values[3];
}
EXPORT unsigned long messagesToNil(void) {
  NSString *nothing = (NSString *)0;
  const Range range = [nothing rangeOfString:@"constant"];
  return [nothing length] + range.location + range.length + (unsigned long)[nothing doubleValue];
}
EXPORT int hasItsClass(void) { return object_getClass([NSString stringWithUTF8String:"made"]) != (Class)0; }
/// The compiler takes the result for extended.
EXPORT unsigned lowByte(unsigned long number) { return [@"receiver" lowByteOf:number]; }
