#include "tools/machorun/objective_c.h"

#include <dlfcn.h>

#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <string_view>

extern "C" {
// messages_x86_64.S, messages_arm64.S
void machorun_msgSend();
void machorun_msgSend_stret();
void machorun_msgSend_fpret();
}

namespace machorun {
namespace {

/// The runtime comes with the platform's library. It is not linked here, because programs without a Mac's image need
/// none.
template <typename Function>
Function* runtimeFunction(const char* name) {
  auto* const found = reinterpret_cast<Function*>(dlsym(RTLD_DEFAULT, name));
  if (found == nullptr) {
    throw MachoError(std::string("the Objective-C runtime lacks ") + name);
  }
  return found;
}

/// Null for a class that does not exist.
void* classNamed(const char* name) { return runtimeFunction<void*(const char*)>("objc_getClass")(name); }

/// On this system it is defined in a header only.
void* objectGetClass(void* const* object) { return object == nullptr ? nullptr : *object; }

// --- messages

struct Entry {
  const char* symbol;
  void (*function)();
};
constexpr Entry kEntries[] = {
    {"_objc_msgSend", machorun_msgSend},
    {"_objc_msgSend_stret", machorun_msgSend_stret},
    {"_objc_msgSend_fpret", machorun_msgSend_fpret},
};

// Of the image's own code: the call to the look-up is at its beginning, the entries follow, then the addresses.
constexpr std::size_t kFirstEntry = 0x40;
constexpr std::size_t kEntrySize = 0x20;
constexpr std::size_t kAddresses = 0x100;
constexpr std::size_t kEntryAddress = kAddresses + 8;

constexpr std::size_t placeOf(std::size_t entry) { return kFirstEntry + entry * kEntrySize; }

template <typename Code>
void writeCode(std::uint8_t* place, std::initializer_list<Code> code) {
  std::memcpy(place, std::data(code), code.size() * sizeof(Code));
}

#ifdef __aarch64__

/// ldr x16, slot
constexpr std::uint32_t loadX16(std::size_t at, std::size_t slot) {
  return 0x58000010 | static_cast<std::uint32_t>((slot - at) / 4) << 5;
}

void writeLookUp(std::uint8_t* code) {
  // stp x29, x30, [sp, #-16]!; mov x29, sp; blr x16; ldp x29, x30, [sp], #16; ret
  writeCode<std::uint32_t>(code, {loadX16(0, kAddresses), 0xA9BF7BFD, 0x910003FD, 0xD63F0200, 0xA8C17BFD, 0xD65F03C0});
}

void writeEntry(std::uint8_t* code, std::size_t at, std::size_t slot) {
  // adr x17, code; ldr x16, slot; br x16
  const auto words = static_cast<std::uint32_t>(-static_cast<std::int64_t>(at) / 4) & 0x7FFFF;
  writeCode<std::uint32_t>(code + at, {0x10000011 | words << 5, loadX16(at + 4, slot), 0xD61F0200});
}

#else

/// The distance from the end of a 4-byte operand at `at` to `target`, byte `index` of it.
constexpr std::uint8_t relative(std::size_t at, std::size_t target, unsigned index) {
  return static_cast<std::uint8_t>((target - (at + 4)) >> (8 * index));
}

void writeLookUp(std::uint8_t* code) {
  constexpr auto kOperand = [](unsigned index) { return relative(6, kAddresses, index); };
  // sub rsp, 8; call [address]; add rsp, 8; ret
  writeCode<std::uint8_t>(code, {0x48, 0x83, 0xEC, 0x08, 0xFF, 0x15, kOperand(0), kOperand(1), kOperand(2), kOperand(3),
                                 0x48, 0x83, 0xC4, 0x08, 0xC3});
}

void writeEntry(std::uint8_t* code, std::size_t at, std::size_t slot) {
  const auto look_up = [=](unsigned index) { return relative(at + 3, 0, index); };
  const auto target = [=](unsigned index) { return relative(at + 9, slot, index); };
  // lea r11, [code]; jmp [slot]
  writeCode<std::uint8_t>(code + at, {0x4C, 0x8D, 0x1D, look_up(0), look_up(1), look_up(2), look_up(3), 0xFF, 0x25,
                                      target(0), target(1), target(2), target(3)});
}

#endif

// --- what the image holds

void registerSelectors(const macho::Image& image, const MappedImage& mapped, const macho::Section& section) {
  auto* const registered = runtimeFunction<const void*(const char*)>("sel_registerName");
  for (std::uint64_t at = section.address; at + 8 <= section.address + section.size; at += 8) {
    const macho::Pointer name = image.pointerAt(at);
    if (name.kind != macho::Pointer::Kind::image) {
      throw MachoError("a selector has no name");
    }
    mapped.write(at, registered(std::string(image.textAt(name.value)).c_str()));
  }
}

void convertStrings(const macho::Image& image, const MappedImage& mapped, const macho::Section& section) {
  struct OfMac {
    void* type;
    std::uint64_t flags;
    const char* text;
    std::uint64_t length;
  };
  struct OfThisSystem {
    void* type;
    const char* text;
    std::uint32_t length;
  };
  static_assert(sizeof(OfThisSystem) <= sizeof(OfMac));
  constexpr std::uint32_t kBytes = 0x7C8;
  for (std::uint64_t at = section.address; at + sizeof(OfMac) <= section.address + section.size; at += sizeof(OfMac)) {
    const auto string = mapped.read<OfMac>(at);
    if (static_cast<std::uint32_t>(string.flags) != kBytes) {
      throw MachoError("a constant string of 16-bit characters is not supported");
    }
    const macho::Pointer text = image.pointerAt(at + offsetof(OfMac, text));
    if (text.kind != macho::Pointer::Kind::image || image.textAt(text.value).size() < string.length) {
      throw MachoError("a constant string lies outside the image");
    }
    mapped.write(at, OfThisSystem{string.type, string.text, static_cast<std::uint32_t>(string.length)});
  }
}

}  // namespace

void* findObjectiveC(const std::string& symbol) {
  constexpr std::string_view kClassPrefix = "_OBJC_CLASS_$_";
  if (symbol == "___CFConstantStringClassReference") {
    return classNamed("NSConstantString");
  }
  if (symbol == "_object_getClass") {
    return reinterpret_cast<void*>(objectGetClass);
  }
  // What the image holds as the class is the symbol's address.
  return symbol.starts_with(kClassPrefix) ? classNamed(symbol.c_str() + kClassPrefix.size()) : nullptr;
}

void makeMessageEntries(const MappedImage& mapped) {
  std::uint8_t* const code = mapped.ownCode();
  void* const look_up = dlsym(RTLD_DEFAULT, "objc_msg_lookup");
  std::memcpy(code + kAddresses, &look_up, sizeof look_up);
  writeLookUp(code);
  for (std::size_t i = 0; i < std::size(kEntries); ++i) {
    const std::size_t slot = kEntryAddress + i * sizeof(void*);
    std::memcpy(code + slot, &kEntries[i].function, sizeof(void*));
    writeEntry(code, placeOf(i), slot);
  }
}

void* messageEntry(const MappedImage& mapped, const std::string& symbol) {
  const void* look_up = nullptr;
  std::memcpy(&look_up, mapped.ownCode() + kAddresses, sizeof look_up);
  if (look_up == nullptr) {
    return nullptr;
  }
  const auto* const found = std::find_if(std::begin(kEntries), std::end(kEntries),
                                         [&](const Entry& entry) { return symbol == entry.symbol; });
  return found == std::end(kEntries) ? nullptr : mapped.ownCode() + placeOf(static_cast<std::size_t>(found - kEntries));
}

void adaptObjectiveC(const macho::Image& image, const MappedImage& mapped) {
  for (const char* const definitions : {"__objc_classlist", "__objc_catlist", "__objc_protolist", "__objc_nlclslist"}) {
    if (const macho::Section* const section = image.findSection(definitions); section != nullptr && section->size > 0) {
      throw MachoError("the image defines Objective-C classes, which is not supported");
    }
  }
  for (const macho::Section& section : image.sections()) {
    if (section.name == "__objc_selrefs") {
      registerSelectors(image, mapped, section);
    } else if (section.name == "__cfstring") {
      convertStrings(image, mapped, section);
    }
  }
}

}  // namespace machorun

#ifdef __aarch64__
/// Called by the message entry, which then extends the method's result to the whole register, as the Mac's compilers
/// expect it.
extern "C" __attribute__((visibility("hidden"))) std::uint64_t machorun_returns_boolean(void* const* receiver,
                                                                                        const void* selector) {
  static auto* const find_method = machorun::runtimeFunction<void*(void*, const void*)>("class_getInstanceMethod");
  static auto* const types_of = machorun::runtimeFunction<const char*(void*)>("method_getTypeEncoding");
  void* const method = find_method(*receiver, selector);
  const char result = method == nullptr ? '\0' : *types_of(method);
  return result == 'C' || result == 'B' ? 1 : 0;
}
#endif
