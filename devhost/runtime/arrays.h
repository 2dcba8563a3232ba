// Host arrays: one dimension, elements of one type, index 0 first. One thread at a time.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "devhost/language/value.h"
#include "devhost/runtime/handles.h"

namespace devhost {

/// What plugins hold as REALarrayStruct*.
class Array final : public Counted {
 public:
  static constexpr Kind kKind = Kind::kArray;
  Array(std::shared_ptr<Handles> handles, Type element_type, Values elements);

  Type elementType() const { return element_type_; }
  const Values& elements() const { return elements_; }
  std::int64_t upperBound() const { return static_cast<std::int64_t>(elements_.size()) - 1; }
  /// The elements' bytes. Throws ValueError for elements other than strings.
  std::vector<std::string> texts() const;

  /// False, and nothing changes, for a negative index and one beyond the end.
  bool insert(std::int64_t index, Value value);

  std::string describe() const override;

 private:
  Type element_type_;
  Values elements_;
};

}  // namespace devhost
