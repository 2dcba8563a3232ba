// Arrays as a whole.
#include "devhost/entries/entries.h"
#include "devhost/entries/entry_values.h"

namespace devhost {
namespace {

/// An array that is made larger than this is taken for a wrong upper bound.
constexpr std::int64_t kMaxNewElements = 100'000'000;

void* createArray(std::uint32_t code, std::int64_t upper_bound) {
  return guarded<void*>("creating an array", nullptr, [=](Host& host) -> void* {
    const std::optional<Type> type = elementTypeOfCode(code);
    if (!type || upper_bound < -1 || upper_bound >= kMaxNewElements) {
      host.handles().addFault("creating an array: element type " + std::to_string(code) + ", upper bound " +
                              std::to_string(upper_bound));
      return nullptr;
    }
    const Value initial = initialValue(host, {*type, {}, false});
    return give(host.makeArray(*type, Values(static_cast<std::size_t>(upper_bound + 1), initial)));
  });
}

std::int64_t upperBound(void* array) {
  const Array* const found = Host::current().handles().find<Array>(array, "RuntimeUBound");
  return found == nullptr ? -1 : found->upperBound();
}

/// The element of an array of the wanted form, or nothing.
const Value* read(void* array, std::int64_t index, Form form, const char* where) {
  const Array* const found = Host::current().handles().find<Array>(array, where);
  return found == nullptr || factsOf(found->elementType()).form != form ? nullptr : found->get(index);
}

std::int64_t readInteger(void* array, std::int64_t index) {
  const Value* const element = read(array, index, Form::kSigned, "RuntimeDirectReadIntArray");
  return element == nullptr ? 0 : element->integer();
}

void* readString(void* array, std::int64_t index) {
  const Value* const element = read(array, index, Form::kString, "RuntimeDirectReadStringArray");
  return element == nullptr ? nullptr : element->string().handle();
}

void* readObject(void* array, std::int64_t index) {
  const Value* const element = read(array, index, Form::kObject, "RuntimeDirectReadObjectArray");
  return element == nullptr ? nullptr : element->object().handle();
}

const Entry kEntries[] = {
    // (uint32 element type's code, int64 upper bound) -> new array; its elements are zero, empty or nil
    entry("RuntimeArrayCreateSingleDimBoundedArray", createArray),
    entry("RuntimeUBound", upperBound),                 // (array) -> int64; -1 for an empty array and for nil
    entry("RuntimeDirectReadIntArray", readInteger),    // (array, int64 index) -> int64, of signed elements
    entry("RuntimeDirectReadStringArray", readString),  // (array, int64 index) -> string, borrowed
    entry("RuntimeDirectReadObjectArray", readObject),  // (array, int64 index) -> object, borrowed
};

}  // namespace

void addArrayEntries(Host& host) { addEntries(host, kEntries); }

}  // namespace devhost
