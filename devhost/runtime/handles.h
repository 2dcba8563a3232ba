// Handles: what a plugin holds of the host. Each is the address of a reference-counted string, object or array, which
// the plugin never looks inside.
//
// References of the host (std::shared_ptr) and of the plugin are counted apart. So the host can list what a plugin
// forgot to release, and one release too many is recorded instead of followed. One thread at a time.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace devhost {

class Handles;

/// A reference of the host; may be nil.
template <typename T>
using Ref = std::shared_ptr<T>;

/// A reference-counted object behind a handle. Derived classes have a constant kName, for messages.
class Counted : public std::enable_shared_from_this<Counted> {
 public:
  explicit Counted(std::shared_ptr<Handles> handles);
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;
  virtual ~Counted();

  /// One line for a report.
  virtual std::string describe() const = 0;
  /// The address that a plugin gets.
  void* handle() { return this; }

 private:
  std::shared_ptr<Handles> handles_;
};

/// All living handles of one host, and the mistakes that plugins made with them.
class Handles {
 public:
  /// Gives the plugin a reference and returns the handle; null for nil.
  void* give(const Ref<Counted>& counted);

  /// The object behind a handle, which stays the plugin's. Nil for null. Nil for a handle that does not live or is of
  /// another kind, which is recorded as a fault at `where`.
  template <typename T>
  Ref<T> find(const void* handle, const char* where) {
    auto* const found = dynamic_cast<T*>(findLiving(handle));
    if (found == nullptr && handle != nullptr) {
      addUnknownHandle(handle, T::kName, where);
    }
    return found == nullptr ? nullptr : std::static_pointer_cast<T>(found->shared_from_this());
  }

  /// Takes a reference back from the plugin. Records a fault when the plugin has none.
  template <typename T>
  void release(const void* handle, const char* where) {
    dropReference(find<T>(handle, where), where, "releases");
  }

  /// The plugin hands one of its references to the host: as a result, a method's argument, an element, a stored slot.
  /// Nil as for find. Records a fault when the plugin has no reference, and returns the object all the same.
  template <typename T>
  Ref<T> take(const void* handle, const char* where) {
    Ref<T> found = find<T>(handle, where);
    dropReference(found, where, "hands over");
    return found;
  }

  void addFault(std::string fault) { faults_.push_back(std::move(fault)); }
  const std::vector<std::string>& faults() const { return faults_; }
  void clearFaults() { faults_.clear(); }

  /// How many objects live.
  std::size_t count() const { return living_.size(); }
  /// One line for each object that the plugin holds references to, sorted.
  std::vector<std::string> describeHeld() const;
  void dropAllPluginReferences();

 private:
  friend class Counted;
  struct Held {
    Ref<Counted> counted;
    std::size_t references = 0;
  };

  Counted* findLiving(const void* handle) const;
  void addUnknownHandle(const void* handle, const char* kind, const char* where);
  /// `action` is for the fault that is recorded when the plugin has no reference. Nil is ignored.
  void dropReference(const Ref<Counted>& counted, const char* where, const char* action);

  std::unordered_set<const void*> living_;
  std::unordered_map<const Counted*, Held> held_;  // by the plugin
  std::vector<std::string> faults_;
};

}  // namespace devhost
