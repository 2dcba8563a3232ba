#include "devhost/runtime/objects.h"

#include <string_view>

#include "devhost/language/printable.h"

namespace devhost {
namespace {

constexpr std::size_t kDescribedBytes = 120;

}  // namespace

String::String(std::shared_ptr<Handles> handles, std::string bytes, std::uint32_t encoding)
    : Counted(std::move(handles)), bytes_(std::move(bytes)), encoding_(encoding) {}

std::string String::describe() const {
  const bool cut = bytes_.size() > kDescribedBytes;
  return "string \"" + printable(std::string_view(bytes_).substr(0, kDescribedBytes)) + (cut ? "...\"" : "\"") + " (" +
         std::to_string(bytes_.size()) + " bytes)";
}

Array::Array(std::shared_ptr<Handles> handles, std::vector<Ref<String>> elements)
    : Counted(std::move(handles)), elements_(std::move(elements)) {}

bool Array::insert(std::int64_t index, Ref<String> element) {
  if (index < 0 || index > static_cast<std::int64_t>(elements_.size())) {
    return false;
  }
  elements_.insert(elements_.begin() + index, std::move(element));
  return true;
}

std::string Array::describe() const { return "array of String (" + std::to_string(elements_.size()) + " elements)"; }

Object::Object(std::shared_ptr<Handles> handles, std::string class_name)
    : Counted(std::move(handles)), class_name_(std::move(class_name)) {}

void* Object::method(const std::string& signature) const {
  const auto found = methods_.find(signature);
  return found == methods_.end() ? nullptr : found->second.get();
}

std::string Object::describe() const { return "object of class " + class_name_; }

}  // namespace devhost
