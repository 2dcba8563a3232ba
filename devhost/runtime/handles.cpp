#include "devhost/runtime/handles.h"

#include <algorithm>
#include <cstdio>

namespace devhost {

Counted::Counted(std::shared_ptr<Handles> handles, Kind kind) : handles_(std::move(handles)), kind_(kind) {
  handles_->living_.insert(this);
}

Counted::~Counted() { handles_->living_.erase(this); }

void Counted::dropHostReference() {
  --host_references_;
  deleteIfUnused();
}

bool Counted::dropPluginReference() {
  if (plugin_references_ == 0) {
    return false;
  }
  --plugin_references_;
  deleteIfUnused();
  return true;
}

void Counted::dropAllPluginReferences() {
  plugin_references_ = 0;
  deleteIfUnused();
}

void Counted::deleteIfUnused() {
  if (references() == 0) {
    delete this;
  }
}

const char* nameOf(Counted::Kind kind) {
  switch (kind) {
    case Counted::Kind::kString:
      return "string";
    case Counted::Kind::kObject:
      return "object";
    case Counted::Kind::kArray:
      return "array";
  }
  return "";
}

Counted* Handles::find(const void* handle, Counted::Kind kind, const char* where) {
  if (handle == nullptr) {
    return nullptr;
  }
  // Looked up before it is followed: a handle that was released, or never was one, must not be read.
  auto* const counted = static_cast<Counted*>(const_cast<void*>(handle));
  if (living_.count(counted) == 0 || counted->kind() != kind) {
    char address[32];
    std::snprintf(address, sizeof address, "%p", handle);
    addFault(std::string(where) + ": " + address + " is no living " + nameOf(kind));
    return nullptr;
  }
  return counted;
}

void Handles::release(const void* handle, Counted::Kind kind, const char* where) {
  Counted* const found = find(handle, kind, where);
  if (found != nullptr && !found->dropPluginReference()) {
    addFault(std::string(where) + ": releases a reference that it does not hold, to " + found->describe());
  }
}

std::size_t Handles::count(Counted::Kind kind) const {
  return static_cast<std::size_t>(
      std::count_if(living_.begin(), living_.end(), [kind](const Counted* c) { return c->kind() == kind; }));
}

std::vector<Counted*> Handles::heldByPlugin() const {
  std::vector<Counted*> held;
  std::copy_if(living_.begin(), living_.end(), std::back_inserter(held),
               [](const Counted* c) { return c->pluginReferences() > 0; });
  return held;
}

void Handles::dropAllPluginReferences() {
  for (Counted* counted : heldByPlugin()) {
    // An earlier one may have owned this one.
    if (living_.count(counted) != 0) {
      counted->dropAllPluginReferences();
    }
  }
}

}  // namespace devhost
