// The table of host entries: names, and the addresses that the resolver answers with.
//
// One thread at a time. Tests edit it: remove an entry, replace one, and read which names were asked for.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace devhost {

/// One entry, for the lists in which the groups of entries are written down.
struct Entry {
  const char* name;
  void* function;
};

template <typename Result, typename... Arguments>
Entry entry(const char* name, Result (*function)(Arguments...)) {
  return {name, reinterpret_cast<void*>(function)};
}

class EntryTable {
 public:
  /// Adds or replaces an entry.
  void set(std::string_view name, void* function) { functions_[std::string(name)] = function; }
  template <typename Result, typename... Arguments>
  void set(std::string_view name, Result (*function)(Arguments...)) {
    set(name, reinterpret_cast<void*>(function));
  }
  void remove(std::string_view name) { functions_.erase(std::string(name)); }
  void clear() { functions_.clear(); }

  /// Null when there is none. Does not count as a look-up.
  void* find(std::string_view name) const;
  std::vector<std::string> names() const;  ///< sorted

  /// What the resolver does: finds the entry and notes that it was asked for.
  void* resolve(const char* name);
  /// Every name that was asked for, in order, found or not.
  const std::vector<std::string>& lookups() const { return lookups_; }
  void clearLookups() { lookups_.clear(); }

 private:
  std::unordered_map<std::string, void*> functions_;
  std::vector<std::string> lookups_;
};

}  // namespace devhost
