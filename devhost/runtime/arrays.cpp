#include "devhost/runtime/arrays.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace devhost {

Array::Array(std::shared_ptr<Handles> handles, Type element_type, Values elements)
    : Counted(std::move(handles), kKind), element_type_(element_type), elements_(std::move(elements)) {}

std::vector<std::string> Array::texts() const {
  std::vector<std::string> texts;
  texts.reserve(elements_.size());
  std::transform(elements_.begin(), elements_.end(), std::back_inserter(texts),
                 [](const Value& v) { return v.text(); });
  return texts;
}

bool Array::insert(std::int64_t index, Value value) {
  if (index < 0 || index > upperBound() + 1) {
    return false;
  }
  elements_.insert(elements_.begin() + index, std::move(value));
  return true;
}

std::string Array::describe() const {
  return std::string("array of ") + factsOf(element_type_).name + " (" + std::to_string(elements_.size()) +
         " elements)";
}

}  // namespace devhost
