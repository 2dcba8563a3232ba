#include "faults/plugin_library.h"

#include <dlfcn.h>
#include <link.h>
#include <objc/message.h>
#include <objc/runtime.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <sstream>
#include <utility>
#include <vector>

#include "support/process.h"
#include "tools/macho/image.h"

namespace faults {

// --- symbols

namespace {

/// The lines that nm prints: "NAME TYPE [VALUE [SIZE]]".
std::istringstream listing(std::vector<std::string> options, const std::string& library) {
  options.insert(options.begin(), {"nm", "--format=posix"});
  options.push_back(library);
  return std::istringstream(support::runSuccessfully(options));
}

std::set<std::string> names(const std::vector<std::string>& options, const std::string& library) {
  std::istringstream lines = listing(options, library);
  std::set<std::string> result;
  for (std::string line; std::getline(lines, line);) {
    result.insert(line.substr(0, line.find_first_of(" @")));
  }
  return result;
}

}  // namespace

// --- a library for the Mac, whose names begin with an underscore

namespace {

std::string withoutUnderscore(std::string_view name) { return std::string(name.substr(name.starts_with('_') ? 1 : 0)); }

/// What `use` finds in the library's code for this processor.
template <typename Use>
auto withImage(const std::string& library, Use use) {
  const std::vector<std::uint8_t> file = macho::contentsOf(library);
  return use(macho::imageForThisProcessor(file));
}

std::set<std::string> importsOf(const macho::Image& image) {
  std::set<std::string> names;
  for (const macho::Import& import : image.imports()) {
    names.insert(withoutUnderscore(import.name));
  }
  return names;
}

std::map<std::string, std::uintptr_t> symbolsOf(const macho::Image& image) {
  std::map<std::string, std::uintptr_t> result;
  for (const macho::Symbol& symbol : image.symbols()) {
    result[withoutUnderscore(symbol.name)] = symbol.address - image.baseAddress();
  }
  return result;
}

std::set<std::string> selectorsOf(const macho::Image& image) {
  std::set<std::string> selectors;
  if (const macho::Section* const references = image.findSection("__objc_selrefs")) {
    for (std::uint64_t at = 0; at < references->size; at += sizeof(std::uint64_t)) {
      selectors.emplace(image.textAt(image.pointerAt(references->address + at).value));
    }
  }
  return selectors;
}

}  // namespace

bool isForMac(const std::string& library) { return macho::isMacho(macho::contentsOf(library)); }

// --- either

std::set<std::string> undefinedSymbols(const std::string& library) {
  if (isForMac(library)) {
    return withImage(library, importsOf);
  }
  return names({"-D", "--undefined-only"}, library);
}

std::set<std::string> definedSymbols(const std::string& library) { return names({"-D", "--defined-only"}, library); }

std::map<std::string, std::uintptr_t> ownSymbols(const std::string& library) {
  if (isForMac(library)) {
    return withImage(library, symbolsOf);
  }
  std::istringstream lines = listing({"--defined-only"}, library);
  std::map<std::string, std::uintptr_t> result;
  for (std::string line; std::getline(lines, line);) {
    std::istringstream fields(line);
    std::string name;
    std::string type;
    std::string value;
    if (fields >> name >> type >> value) {
      result[name] = std::stoull(value, nullptr, 16);
    }
  }
  return result;
}

std::set<std::string> sentSelectors(const std::string& library) {
  if (isForMac(library)) {
    return withImage(library, selectorsOf);
  }
  // The compiler makes a text of this name for each selector that a message expression uses.
  static const std::string kPrefix = ".objc_sel_name";
  std::set<std::string> selectors;
  for (const auto& [name, offset] : ownSymbols(library)) {
    if (name.starts_with(kPrefix)) {
      selectors.insert(name.substr(kPrefix.size()));
    }
  }
  return selectors;
}

// --- messages

namespace {

using Lookup = IMP (*)(id, SEL);

struct Range {
  std::uintptr_t begin = 0;
  std::uintptr_t end = 0;
};

std::atomic<std::uintptr_t> watched_begin{0};
std::atomic<std::uintptr_t> watched_end{0};

/// Kept for the life of the process: a walk may still send messages while the process exits.
struct State {
  std::mutex mutex;
  std::set<std::string> sent;
  std::string replaced;  ///< selector; empty for none
  const void* result = nullptr;
};

State& state() {
  static auto* const kept = new State;
  return *kept;
}

/// In place of a message's method. It ignores arguments, so it serves any method that returns a pointer.
std::atomic<const void*> current_result{nullptr};
const void* returnResult() { return current_result.load(); }

/// Records the message; true when its method is to be replaced.
bool notes(SEL selector) {
  const std::lock_guard lock(state().mutex);
  const std::string name = sel_getName(selector);
  state().sent.insert(name);
  if (name != state().replaced) {
    return false;
  }
  current_result = state().result;
  return true;
}

int findRange(dl_phdr_info* info, std::size_t, void* data) {
  auto& [address, range] = *static_cast<std::pair<std::uintptr_t, Range>*>(data);
  Range whole{UINTPTR_MAX, 0};
  for (int i = 0; i < info->dlpi_phnum; ++i) {
    const auto& header = info->dlpi_phdr[i];
    if (header.p_type == PT_LOAD) {
      whole.begin = std::min<std::uintptr_t>(whole.begin, info->dlpi_addr + header.p_vaddr);
      whole.end = std::max<std::uintptr_t>(whole.end, info->dlpi_addr + header.p_vaddr + header.p_memsz);
    }
  }
  if (whole.begin <= address && address < whole.end) {
    range = whole;
    return 1;
  }
  return 0;
}

}  // namespace

void watchMessagesOf(const void* address_in_library) {
  std::pair<std::uintptr_t, Range> found{reinterpret_cast<std::uintptr_t>(address_in_library), {}};
  dl_iterate_phdr(findRange, &found);
  watched_begin = found.second.begin;
  watched_end = found.second.end;
}

std::set<std::string> messagesSent() {
  const std::lock_guard lock(state().mutex);
  return state().sent;
}

void replaceMessageResult(const std::string& selector, const void* result) {
  const std::lock_guard lock(state().mutex);
  state().replaced = selector;
  state().result = result;
}

void restoreMessageResults() { replaceMessageResult("", nullptr); }

}  // namespace faults

/// Every message of the process passes here, from before main() on.
extern "C" __attribute__((visibility("default"))) IMP objc_msg_lookup(id receiver, SEL selector) {
  static std::atomic<faults::Lookup> real{nullptr};
  faults::Lookup lookup = real.load(std::memory_order_relaxed);
  if (lookup == nullptr) {
    lookup = reinterpret_cast<faults::Lookup>(dlsym(RTLD_NEXT, "objc_msg_lookup"));
    real.store(lookup, std::memory_order_relaxed);
  }
  const auto caller = reinterpret_cast<std::uintptr_t>(__builtin_return_address(0));
  const bool watched = caller >= faults::watched_begin.load(std::memory_order_relaxed) &&
                       caller < faults::watched_end.load(std::memory_order_relaxed);
  if (watched && faults::notes(selector)) {
    return reinterpret_cast<IMP>(reinterpret_cast<void (*)()>(faults::returnResult));
  }
  return lookup(receiver, selector);
}
