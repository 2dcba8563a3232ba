// Handles: what a plugin holds of the host. Each is the address of a counted thing (string, object or array),
// which the plugin never looks inside.
//
// Two counts are kept apart: references of the host itself (Ref) and references that the plugin was given and has
// neither released nor handed on. So the host can say what a plugin forgot, and one release too many is noted instead
// of followed. One thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace devhost {

class Handles;

/// What a handle stands for. Deleted when the last reference goes.
class Counted {
 public:
  enum class Kind { kString, kObject, kArray };

  Counted(std::shared_ptr<Handles> handles, Kind kind);
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;
  virtual ~Counted();

  Kind kind() const { return kind_; }
  /// One line that names the thing in a report.
  virtual std::string describe() const = 0;

  /// The address that a plugin gets.
  void* handle() { return this; }
  std::size_t references() const { return host_references_ + plugin_references_; }
  std::size_t pluginReferences() const { return plugin_references_; }

  void addHostReference() { ++host_references_; }
  void dropHostReference();
  /// Gives the plugin a reference.
  void addPluginReference() { ++plugin_references_; }
  /// Takes one back. False when the plugin has none; nothing is changed then.
  bool dropPluginReference();
  void dropAllPluginReferences();

 protected:
  const std::shared_ptr<Handles>& handles() const { return handles_; }

 private:
  void deleteIfUnused();

  std::shared_ptr<Handles> handles_;
  std::size_t host_references_ = 0;
  std::size_t plugin_references_ = 0;
  Kind kind_;
};

const char* nameOf(Counted::Kind kind);

/// A reference of the host's own; may be nil. One more on copying. `T` need not be complete to hold or copy one.
template <typename T>
class Ref {
 public:
  Ref() = default;
  Ref(std::nullptr_t) {}
  explicit Ref(T* counted) : counted_(counted) {
    if (counted_ != nullptr) {
      counted_->addHostReference();
    }
  }
  Ref(const Ref& other) : counted_(other.counted_) {
    if (counted_ != nullptr) {
      counted_->addHostReference();
    }
  }
  Ref(Ref&& other) noexcept : counted_(std::exchange(other.counted_, nullptr)) {}
  Ref& operator=(Ref other) noexcept {
    std::swap(counted_, other.counted_);
    return *this;
  }
  ~Ref() {
    if (counted_ != nullptr) {
      counted_->dropHostReference();
    }
  }

  T* get() const { return static_cast<T*>(counted_); }
  T* operator->() const { return get(); }
  T& operator*() const { return *get(); }
  explicit operator bool() const { return counted_ != nullptr; }
  /// What is passed to a plugin; null for nil.
  void* handle() const { return counted_ == nullptr ? nullptr : counted_->handle(); }
  friend bool operator==(const Ref& a, const Ref& b) { return a.counted_ == b.counted_; }

 private:
  Counted* counted_ = nullptr;
};

/// All living handles of one host, and what plugins did wrong with them.
class Handles {
 public:
  /// The thing behind a handle; null when there is none of that kind, which is noted as a fault of the plugin that
  /// called `where`. Null is no fault.
  template <typename T>
  T* find(const void* handle, const char* where) {
    return static_cast<T*>(find(handle, T::kKind, where));
  }

  /// Takes a reference back from the plugin; that it has none is noted as a fault. Null is no fault.
  void release(const void* handle, Counted::Kind kind, const char* where);
  /// The plugin hands one of its references to the host: as a result, an event's argument, an element, a stored slot.
  /// Nil for null and for a bad handle; a handle that the plugin holds no reference to is noted and referenced anew.
  template <typename T>
  Ref<T> take(const void* handle, const char* where) {
    T* const found = find<T>(handle, where);
    Ref<T> taken(found);
    if (found != nullptr && !found->dropPluginReference()) {
      addFault(std::string(where) + ": hands over a reference that it does not hold, to " + found->describe());
    }
    return taken;
  }

  void addFault(std::string fault) { faults_.push_back(std::move(fault)); }
  const std::vector<std::string>& faults() const { return faults_; }
  void clearFaults() { faults_.clear(); }

  std::size_t count(Counted::Kind kind) const;
  /// Everything that the plugin holds references to, in no particular order. Borrowed.
  std::vector<Counted*> heldByPlugin() const;
  void dropAllPluginReferences();

 private:
  friend class Counted;
  Counted* find(const void* handle, Counted::Kind kind, const char* where);

  std::unordered_set<Counted*> living_;
  std::vector<std::string> faults_;
};

}  // namespace devhost
