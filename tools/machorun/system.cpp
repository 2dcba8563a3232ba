#include "tools/machorun/system.h"

#include <sys/random.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <iterator>
#include <string>
#include <utility>

#include "tools/machorun/thread_locals.h"

// NOLINTBEGIN(bugprone-reserved-identifier): the C library's names
extern "C" {
int __cxa_atexit(void (*function)(void*), void* argument, void* library);
int __cxa_thread_atexit_impl(void (*function)(void*), void* argument, void* library);
extern __attribute__((visibility("hidden"))) void* __dso_handle;
void machorun_snprintf();
void machorun_printf();
}
// NOLINTEND(bugprone-reserved-identifier)

namespace machorun {

// --- numbers of errors

namespace {

/// This system's, and the Mac's. The others are the same, or no call of an image gives them.
constexpr std::pair<int, int> kErrors[] = {{EAGAIN, 35},       {EDEADLK, 11},          {ETIMEDOUT, 60},
                                           {ENOSYS, 78},       {EOVERFLOW, 84},        {ENOTSUP, 45},
                                           {ENAMETOOLONG, 63}, {ENOTRECOVERABLE, 104}, {EOWNERDEAD, 105}};

}  // namespace

int toMacError(int number) {
  const auto* const found =
      std::find_if(std::begin(kErrors), std::end(kErrors), [&](const auto& pair) { return pair.first == number; });
  return found == std::end(kErrors) ? number : found->second;
}

int fromMacError(int number) {
  const auto* const found =
      std::find_if(std::begin(kErrors), std::end(kErrors), [&](const auto& pair) { return pair.second == number; });
  return found == std::end(kErrors) ? number : found->first;
}

namespace {

/// The POSIX form; here the plain name is the GNU form.
int errorText(int number, char* buffer, std::size_t size) {
  constexpr int kOutOfRange = 34;  // ERANGE on both systems
  const std::string text = std::strerror(fromMacError(number));
  if (size == 0) {
    return kOutOfRange;
  }
  const std::size_t length = std::min(text.size(), size - 1);
  std::memcpy(buffer, text.data(), length);
  buffer[length] = '\0';
  return length == text.size() ? 0 : kOutOfRange;
}

// --- clocks, numbered otherwise

int clockTime(int clock, timespec* time) {
  switch (clock) {
    case 0:
      return clock_gettime(CLOCK_REALTIME, time);
    case 4:  // CLOCK_MONOTONIC_RAW and its approximate form
    case 5:
      return clock_gettime(CLOCK_MONOTONIC_RAW, time);
    case 6:  // CLOCK_MONOTONIC, which goes on while the computer sleeps
      return clock_gettime(CLOCK_BOOTTIME, time);
    case 8:  // CLOCK_UPTIME_RAW and its approximate form
    case 9:
      return clock_gettime(CLOCK_MONOTONIC, time);
    case 12:
      return clock_gettime(CLOCK_PROCESS_CPUTIME_ID, time);
    case 16:
      return clock_gettime(CLOCK_THREAD_CPUTIME_ID, time);
    default:
      errno = EINVAL;
      return -1;
  }
}

// --- the version of the system

/// Whether the system is at least of these versions: of pairs of a platform (1 is macOS) and a packed version. It is
/// macOS 10.13, or what MACHORUN_SYSTEM names, such as "14.2". A bool on the Mac, whose callers read it as an int.
int checkVersions(std::uint32_t count, const std::uint32_t* versions) {
  unsigned major = 10;
  unsigned minor = 13;
  if (const char* const system = std::getenv("MACHORUN_SYSTEM"); system != nullptr) {
    char* rest = nullptr;
    major = static_cast<unsigned>(std::strtoul(system, &rest, 10));
    minor = *rest == '.' ? static_cast<unsigned>(std::strtoul(rest + 1, nullptr, 10)) : 0;
  }
  for (std::size_t i = 0; i < count; ++i) {
    if (versions[2 * i] == 1 && versions[2 * i + 1] > (major << 16 | minor << 8)) {
      return 0;
    }
  }
  return 1;
}

// --- ends of the process and of threads; the image's own handle means nothing here

int atExit(void (*function)(void*), void* argument, void*) { return __cxa_atexit(function, argument, nullptr); }
int atThreadExit(void (*function)(void*), void* argument) {
  return __cxa_thread_atexit_impl(function, argument, &__dso_handle);
}
[[noreturn]] void assertionFailed(const char* function, const char* file, int line, const char* what) {
  std::fprintf(stderr, "Assertion failed: (%s), function %s, file %s, line %d.\n", what, function, file, line);
  std::abort();
}
/// Lazy symbols are bound when the image is loaded.
[[noreturn]] void bindLazily() { std::abort(); }

// --- variables

/// Which bytes a function that was called in place of this one wrote over, below the return address.
std::uint64_t stack_guard = 0;
FILE* standard_error = nullptr;
FILE* standard_output = nullptr;
void* stack_block[32];  // the address is what counts
void* global_block[32];

/// The classes of characters, which the Mac's headers read in place.
struct CharacterClasses {
  std::array<char, 60> unused;
  std::array<std::uint32_t, 256> kind;
  std::array<std::int32_t, 256> lower;
  std::array<std::int32_t, 256> upper;
  std::array<char, 128> unused_end;
};
static_assert(offsetof(CharacterClasses, kind) == 60);
CharacterClasses character_classes = {};

enum CharacterKind : std::uint32_t {
  kLetter = 0x100,
  kControl = 0x200,
  kDigit = 0x400,
  kGraphic = 0x800,
  kLower = 0x1000,
  kPunctuation = 0x2000,
  kSpace = 0x4000,
  kUpper = 0x8000,
  kHexDigit = 0x10000,
  kBlank = 0x20000,
  kPrintable = 0x40000,
};

void fillCharacterClasses() {
  for (int c = 0; c < 128; ++c) {
    const bool is_upper = c >= 'A' && c <= 'Z';
    const bool is_lower = c >= 'a' && c <= 'z';
    const bool is_digit = c >= '0' && c <= '9';
    const bool is_graphic = c > ' ' && c < 127;
    const std::pair<bool, std::uint32_t> kinds[] = {
        {is_upper || is_lower, kLetter},
        {c < ' ' || c == 127, kControl},
        {is_digit, kDigit | static_cast<std::uint32_t>(c - '0')},
        {is_graphic, kGraphic},
        {is_lower, kLower},
        {is_graphic && !is_upper && !is_lower && !is_digit, kPunctuation},
        {c == ' ' || (c >= '\t' && c <= '\r'), kSpace},
        {is_upper, kUpper},
        {is_digit || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f'), kHexDigit},
        {c == ' ' || c == '\t', kBlank},
        {is_graphic || c == ' ', kPrintable},
    };
    const auto index = static_cast<std::size_t>(c);
    for (const auto& [applies, kind] : kinds) {
      character_classes.kind[index] |= applies ? kind : 0;
    }
    character_classes.lower[index] = is_upper ? c + ('a' - 'A') : c;
    character_classes.upper[index] = is_lower ? c - ('a' - 'A') : c;
  }
}

#ifdef __aarch64__
void invalidateCode(void* code, std::size_t size) {
  auto* const begin = static_cast<char*>(code);
  __builtin___clear_cache(begin, begin + size);
}

/// On the Mac a list of arguments is a pointer to slots of eight bytes on the stack; this system's, without arguments
/// in registers, reads the same.
struct ListOnStack {
  void* stack;
  void* general = nullptr;
  void* vector = nullptr;
  int general_offset = 0;
  int vector_offset = 0;
};
static_assert(sizeof(ListOnStack) == sizeof(std::va_list));

int printList(FILE* file, const char* format, void* slots) {
  ListOnStack list{slots};
  return std::vfprintf(file, format, *reinterpret_cast<std::va_list*>(&list));
}
#endif

const Substitute* findIn(std::span<const Substitute> table, std::string_view symbol) {
  const auto found =
      std::find_if(table.begin(), table.end(), [&](const Substitute& entry) { return entry.symbol == symbol; });
  return found == table.end() ? nullptr : &*found;
}

void fillVariables() {
  if (getrandom(&stack_guard, sizeof stack_guard, 0) != sizeof stack_guard) {
    stack_guard = 0x595E9FBD94FDA766;
  }
  stack_guard &= ~std::uint64_t{0xFF};  // a zero, which ends a text that runs over
  standard_error = stderr;
  standard_output = stdout;
  fillCharacterClasses();
}

std::span<const Substitute> systemSubstitutes() {
  static const bool filled = (fillVariables(), true);
  static_cast<void>(filled);
  static const Substitute kTable[] = {
      {"___stack_chk_guard", &stack_guard},
      {"___stderrp", &standard_error},
      {"___stdoutp", &standard_output},
      {"__DefaultRuneLocale", &character_classes},
      {"__NSConcreteStackBlock", &stack_block},
      {"__NSConcreteGlobalBlock", &global_block},
      substitute("___error", __errno_location),
      {"___bzero", reinterpret_cast<void*>(bzero)},
      substitute("___cxa_atexit", atExit),
      substitute("__tlv_atexit", atThreadExit),
      substitute("__tlv_bootstrap", machorun_thread_local_entry),
      substitute("___assert_rtn", assertionFailed),
      substitute("dyld_stub_binder", bindLazily),
      substitute("_clock_gettime", clockTime),
      substitute("__availability_version_check", checkVersions),
      substitute("_strerror_r", errorText),
#ifdef __aarch64__
      substitute("_sys_icache_invalidate", invalidateCode),
      substitute("_snprintf", machorun_snprintf),
      substitute("_printf", machorun_printf),
      substitute("_vfprintf", printList),
#endif
  };
  return kTable;
}

}  // namespace

void* findSubstitute(std::string_view symbol) {
  for (const auto table : {systemSubstitutes(), threadSubstitutes()}) {
    if (const Substitute* const found = findIn(table, symbol)) {
      return found->address;
    }
  }
  return nullptr;
}

}  // namespace machorun

#ifdef __aarch64__
extern "C" __attribute__((visibility("hidden"))) int machorun_snprintf_list(char* to, std::size_t size,
                                                                            const char* format, void* slots) {
  machorun::ListOnStack list{slots};
  return std::vsnprintf(to, size, format, *reinterpret_cast<std::va_list*>(&list));
}
extern "C" __attribute__((visibility("hidden"))) int machorun_printf_list(const char* format, void* slots) {
  machorun::ListOnStack list{slots};
  return std::vprintf(format, *reinterpret_cast<std::va_list*>(&list));
}
#endif
