/* A small plugin in plain C. Its methods return their arguments, and use handles rightly and wrongly. */
#include <stdint.h>
#include <stdio.h>
#include <string.h>

typedef void* (*Resolver)(const char*);
typedef struct String String;
typedef struct Object Object;
typedef struct Array Array;

static Resolver resolver;
static Object* listener;

static String* build(const char* text) {
  String* (*entry)(const char*, int, unsigned) =
      (String * (*)(const char*, int, unsigned)) resolver("REALBuildStringWithEncoding");
  return entry(text, (int)strlen(text), 0x08000100U);
}

static void release(String* string) { ((void (*)(String*))resolver("REALUnlockString"))(string); }

static const char* contents(String* string) { return ((const char* (*)(String*))resolver("StringGetCString"))(string); }

static int32_t add(int32_t a, int32_t b) { return a + b; }
static uint8_t not(uint8_t truth) { return truth == 0; }
static uint8_t badBoolean(void) { return 2; }
static double half(double number) { return number / 2; }
static float halfSingle(float number) { return number / 2; }
static int8_t smallest(void) { return -128; }
static uint16_t largest16(void) { return 0xFFFF; }
static int64_t most(void) { return INT64_MIN; }

static String* widths(int8_t a, uint8_t b, int16_t c, uint16_t d, int32_t e, uint32_t f, int64_t g, uint64_t h,
                      uint8_t i, float j, double k, int32_t l, uint32_t m) {
  char text[256];
  snprintf(text, sizeof text, "%d %u %d %u %d %u %lld %llu %u %g %g %d %u", a, b, c, d, e, f, (long long)g,
           (unsigned long long)h, i, (double)j, k, l, m);
  return build(text);
}

static void setAll(uint8_t* truth, int32_t* whole, double* number, String** text) {
  *truth = 1;
  *whole = -5;
  *number = 0.5;
  String* const made = build("new");
  release(*text);
  *text = made;
}

static void writeFive(int32_t* whole) { *whole = 5; }
static void leaveAlone(int32_t* whole, String** text) {
  (void)whole;
  (void)text;
}
static String* echo(String* text) { return build(contents(text)); }
static void keep(String* text) { build(contents(text)); }
static void forgetOld(String** text) { *text = build("new"); }
static void releaseTwice(String* text) { release(text); }
static String* returnArgument(String* text) { return text; }

static void listen(Object* object) { listener = object; }

static int32_t tell(int32_t times) {
  int32_t (*heard)(Object*, String*, int32_t) =
      (int32_t(*)(Object*, String*, int32_t))((void* (*)(Object*, const char*))resolver("REALLoadObjectMethod"))(
          listener, "Heard( text as String, number as Integer ) as Integer");
  int32_t sum = 0;
  for (int32_t i = 0; heard != NULL && i < times; ++i) {
    sum += heard(listener, build("tick"), i);
  }
  return sum;
}

static Array* words(String* text) {
  Array* const array = ((Array * (*)(uint32_t, int64_t)) resolver("RuntimeArrayCreateSingleDimBoundedArray"))(3, -1);
  void (*insert)(Array*, int64_t, String*) =
      (void (*)(Array*, int64_t, String*))((void* (*)(Array*))resolver("PluginStringArrayInsertProc"))(array);
  char copy[256];
  snprintf(copy, sizeof copy, "%s", contents(text));
  int64_t index = 0;
  for (char* word = strtok(copy, " "); word != NULL; word = strtok(NULL, " ")) {
    insert(array, index++, build(word));
  }
  return array;
}

static uint8_t isNil(Array* words) { return words == NULL; }

struct Row {
  void* function;
  void* second;
  const char* declaration;
  uint64_t further[3];
};

#define ROW(function, declaration)                    \
  {                                                   \
    (void*)(function), NULL, declaration, { 0, 0, 0 } \
  }

static struct Row rows[] = {
    ROW(add, "Add(a As Integer, b As Integer) As Integer"),
    ROW(not, "Not_(truth As Boolean) As Boolean"),
    ROW(badBoolean, "BadBoolean() As Boolean"),
    ROW(half, "Half(number As Double) As Double"),
    ROW(halfSingle, "HalfSingle(number As Single) As Single"),
    ROW(smallest, "Smallest() As Int8"),
    ROW(largest16, "Largest16() As UInt16"),
    ROW(most, "Most() As Int64"),
    ROW(widths,
        "Widths(a As Int8, b As UInt8, c As Int16, d As UInt16, e As Int32, f As UInt32, g As Int64, h As UInt64, "
        "i As Boolean, j As Single, k As Double, l As Integer, m As UInteger) As String"),
    ROW(setAll, "SetAll(byref truth As Boolean, byref whole As Integer, byref number As Double, byref text As String)"),
    ROW(writeFive, "WriteFive(byref whole As Integer)"),
    ROW(leaveAlone, "LeaveAlone(byref whole As Integer, byref text As String)"),
    ROW(echo, "Echo(text As String) As String"),
    ROW(keep, "Keep(text As String)"),
    ROW(forgetOld, "ForgetOld(byref text As String)"),
    ROW(releaseTwice, "ReleaseTwice(text As String)"),
    ROW(returnArgument, "ReturnArgument(text As String) As String"),
    ROW(listen, "Listen( obj as Object )"),
    ROW(tell, "Tell(times As Integer) As Integer"),
    ROW(words, "Words(text As String) As String()"),
    ROW(isNil, "IsNil(words() As String) As Boolean"),
    ROW(isNil, "IsNilNumbers(numbers() As Int64) As Boolean"),
};

static struct {
  uint64_t version;
  const char* name;
  struct Row* rows;
  uint64_t count;
  uint64_t further[20];
} module = {13, "Sample", rows, sizeof rows / sizeof rows[0], {0}};

__attribute__((visibility("default"))) void REALPluginMain(Resolver resolve);

void REALPluginMain(Resolver resolve) {
  resolver = resolve;
  ((void (*)(int))resolver("RegisterPluginVersion"))(13);
  ((void (*)(const void*))resolver("PluginRegisterModule"))(&module);
}
