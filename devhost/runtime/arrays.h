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
  /// The elements' texts, for arrays of strings and texts. Throws ValueError for others.
  std::vector<std::string> texts() const;

  // Each of these is false, and nothing happens, for an index outside the array; insertion at the end is inside.
  bool insert(std::int64_t index, Value value);
  bool set(std::int64_t index, Value value);
  /// Null for an index outside the array. Borrowed; valid until the array changes.
  const Value* get(std::int64_t index) const;

  std::string describe() const override;

 private:
  Type element_type_;
  Values elements_;
};

}  // namespace devhost
