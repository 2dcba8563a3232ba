// A small library for the Mac, compiled without its headers. The tests call it through what it exports.
#define EXPORT __attribute__((visibility("default")))

typedef unsigned long Size;

extern Size strlen(const char* text);
extern int missing_function(void) __attribute__((weak_import));
extern int sample_variable_of_test;
extern int sample_function_of_test(int number);
extern int _availability_version_check(unsigned count, const unsigned* versions);

// --- pointers

static int number = 41;
static int* const pointers[] = {&number, &number + 1};

EXPORT int exportedNumber = 5;
EXPORT int readNumber(void) { return *pointers[0]; }
EXPORT int pointerDistance(void) { return (int)(pointers[1] - pointers[0]); }
EXPORT Size callLibrary(const char* text) { return strlen(text); }
EXPORT int callTest(int value) { return sample_function_of_test(value) + sample_variable_of_test; }
EXPORT int hasMissingFunction(void) { return missing_function != 0; }

typedef int Function(int);
static Function* const function_of_test = sample_function_of_test;
EXPORT int callThroughPointer(int value) { return function_of_test(value); }

// --- Boolean results: the compiler takes them for extended, and returns an imported function's as they are

extern _Bool CGColorSpaceIsWideGamutRGB(const void* space);
extern unsigned char CFNumberGetValue(const void* number, long type, void* value);
EXPORT unsigned isWideGamut(const void* space) { return CGColorSpaceIsWideGamutRGB(space); }
EXPORT unsigned readValue(const void* number) { return CFNumberGetValue(number, 1, 0); }

// --- initialisers

static int initialised = 1;
__attribute__((constructor)) static void addTwo(void) { initialised += 2; }
__attribute__((constructor)) static void timesTen(void) { initialised *= 10; }
EXPORT int initialisedValue(void) { return initialised; }

// --- thread-local variables

static _Thread_local int counter = 7;
static _Thread_local long zeros[4];
EXPORT int nextCount(void) { return ++counter; }
EXPORT long* zerosOfThread(void) { return zeros; }

/// The arguments pass through a function that reads a thread-local variable, which may change no register but one.
EXPORT double mixed(double a, double b, double c, double d, long e, long f, long g, long h) {
  const int count = counter;
  return a + 2 * b + 3 * c + 4 * d + (double)(5 * e + 6 * f + 7 * g + 8 * h) + 0 * count;
}

// --- blocks

EXPORT int callBlock(int (^block)(int), int value) { return block(value); }
EXPORT int makeBlock(int added) {
  return callBlock(
      ^(int value) {
        return value + added;
      },
      100);
}

// --- unwinding: a value that is kept in a saved register is added up when an exception passes

EXPORT long unwoundSum;
static inline void addUp(long* value) { unwoundSum = unwoundSum * 10 + *value; }
#define KEPT(name, value) long name __attribute__((cleanup(addUp))) = value

typedef void Callback(long number);

/// Wants many registers, so that its callers' are saved.
__attribute__((noinline)) static long busy(Callback* callback, const long* in) {
  const long a = in[0] * 3, b = in[1] * 5, c = in[2] * 7, d = in[3] * 11, e = in[4] * 13, f = in[5] * 17;
  callback(a);
  return a ^ b ^ c ^ d ^ e ^ f;
}

EXPORT long passThrough(Callback* callback, const long* in) {
  KEPT(a, in[0]);
  KEPT(b, in[1]);
  KEPT(c, in[2]);
  KEPT(d, in[3]);
  KEPT(e, in[4]);
  return busy(callback, in) + a + b + c + d + e;
}

EXPORT long passThroughLargeFrame(Callback* callback, const long* in) {
  volatile char large[70000];
  large[0] = (char)in[0];
  KEPT(a, in[0]);
  KEPT(b, in[1]);
  return busy(callback, in) + a + b + large[0];
}

/// The size of its frame changes as it runs.
EXPORT long passThroughVariableFrame(Callback* callback, const long* in, Size size) {
  volatile char* const memory = __builtin_alloca(size);
  memory[0] = 1;
  KEPT(a, in[0]);
  return busy(callback, in) + a + memory[0];
}
