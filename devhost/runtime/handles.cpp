#include "devhost/runtime/handles.h"

#include <algorithm>
#include <cstdio>

namespace devhost {

Counted::Counted(std::shared_ptr<Handles> handles) : handles_(std::move(handles)) { handles_->living_.insert(this); }

Counted::~Counted() { handles_->living_.erase(this); }

void* Handles::give(const Ref<Counted>& counted) {
  if (!counted) {
    return nullptr;
  }
  Held& held = held_[counted.get()];
  held.counted = counted;
  ++held.references;
  return counted->handle();
}

std::vector<std::string> Handles::describeHeld() const {
  std::vector<std::string> lines;
  for (const auto& [address, held] : held_) {
    lines.push_back(held.counted->describe() +
                    (held.references > 1 ? ", " + std::to_string(held.references) + " references" : ""));
  }
  std::sort(lines.begin(), lines.end());
  return lines;
}

void Handles::dropAllPluginReferences() { held_.clear(); }

Counted* Handles::findLiving(const void* handle) const {
  // Looked up before it is followed: a handle may be stale, or not a handle at all.
  return living_.count(handle) == 0 ? nullptr : static_cast<Counted*>(const_cast<void*>(handle));
}

void Handles::addUnknownHandle(const void* handle, const char* kind, const char* where) {
  char address[32];
  std::snprintf(address, sizeof address, "%p", handle);
  addFault(std::string(where) + ": " + address + " is not a living " + kind);
}

void Handles::dropReference(const Ref<Counted>& counted, const char* where, const char* action) {
  if (!counted) {
    return;
  }
  const auto held = held_.find(counted.get());
  if (held == held_.end()) {
    addFault(std::string(where) + ": " + action + " a reference that it does not hold, to " + counted->describe());
  } else if (--held->second.references == 0) {
    held_.erase(held);
  }
}

}  // namespace devhost
