// What plugins hold handles to: strings, arrays and objects. One thread at a time.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "devhost/runtime/handles.h"

namespace devhost {

/// The text-encoding value that stands for UTF-8.
inline constexpr std::uint32_t kUtf8Encoding = 0x08000100;

/// Immutable bytes with an encoding. What plugins hold as REALstringStruct*.
class String final : public Counted {
 public:
  static constexpr const char* kName = "string";
  String(std::shared_ptr<Handles> handles, std::string bytes, std::uint32_t encoding);

  const std::string& bytes() const { return bytes_; }
  std::uint32_t encoding() const { return encoding_; }
  std::string describe() const override;

 private:
  std::string bytes_;
  std::uint32_t encoding_;
};

/// An array of strings, index 0 first. What plugins hold as REALarrayStruct*.
class Array final : public Counted {
 public:
  static constexpr const char* kName = "array";
  Array(std::shared_ptr<Handles> handles, std::vector<Ref<String>> elements);

  const std::vector<Ref<String>>& elements() const { return elements_; }
  /// False, and nothing changes, for a negative index and one beyond the end.
  bool insert(std::int64_t index, Ref<String> element);
  std::string describe() const override;

 private:
  std::vector<Ref<String>> elements_;
};

/// An object with methods, which a plugin finds by their declaration and calls by address. What plugins hold as
/// REALobjectStruct*.
class Object final : public Counted {
 public:
  static constexpr const char* kName = "object";
  Object(std::shared_ptr<Handles> handles, std::string class_name);

  const std::string& className() const { return class_name_; }
  /// The pointer is the address to call, and owns the code there. Replaces a method of the same signature.
  void setMethod(const std::string& signature, std::shared_ptr<void> method) {
    methods_[signature] = std::move(method);
  }
  /// The address of the method of that signature, null when there is none. Valid while the object lives and the method
  /// is not replaced.
  void* method(const std::string& signature) const;
  std::string describe() const override;

 private:
  std::string class_name_;
  std::map<std::string, std::shared_ptr<void>> methods_;  // by signature
};

}  // namespace devhost
