#include "devhost/runtime/host.h"

#include <algorithm>

#include "devhost/entries/entries.h"

namespace devhost {
namespace {

Host* current_host = nullptr;

extern "C" void* resolveEntry(const char* name) { return Host::current().entries().resolve(name); }

std::vector<std::string> describeHeld(const Handles& handles, bool strings_only) {
  std::vector<std::string> lines;
  for (const Counted* held : handles.heldByPlugin()) {
    if (!strings_only || held->kind() == Counted::Kind::kString) {
      const std::size_t count = held->pluginReferences();
      lines.push_back(held->describe() + (count > 1 ? ", " + std::to_string(count) + " references" : ""));
    }
  }
  std::sort(lines.begin(), lines.end());
  return lines;
}

}  // namespace

Host::Host() : previous_(std::exchange(current_host, this)) { addEntries(*this); }

Host::~Host() {
  handles_->dropAllPluginReferences();
  if (current_host == this) {
    current_host = previous_;
  }
}

Host& Host::current() { return *current_host; }

Resolver Host::resolver() { return &resolveEntry; }

Plugin Host::load(const std::string& path) { return {*this, path}; }

Ref<String> Host::makeString(std::string bytes, std::uint32_t encoding) {
  return Ref<String>(new String(handles_, std::move(bytes), encoding));
}

Ref<Object> Host::makeObject(std::string class_name) {
  return Ref<Object>(new Object(*this, handles_, std::move(class_name)));
}

Ref<Array> Host::makeArray(Type element_type, const Values& elements) {
  Values converted;
  converted.reserve(elements.size());
  for (const Value& element : elements) {
    converted.push_back(convertToArgument(*this, element, {element_type, {}, false}));
  }
  return Ref<Array>(new Array(handles_, element_type, std::move(converted)));
}

std::vector<std::string> Host::unreleased() const { return describeHeld(*handles_, false); }

std::vector<std::string> Host::unreleasedStrings() const { return describeHeld(*handles_, true); }

void Host::clearRecords() {
  entries_.clearLookups();
  global_methods_.clearLookups();
  method_lookups_.clear();
  handles_->clearFaults();
  registration_ = {};
}

void Host::addMethodLookup(const void* object, const char* declaration) {
  method_lookups_.push_back({object, declaration == nullptr ? "" : declaration});
}

void Host::holdException(std::exception_ptr exception) {
  if (!held_exception_) {
    held_exception_ = std::move(exception);
  }
}

CurrentHost::CurrentHost(Host& host) : previous_(std::exchange(current_host, &host)) {}

CurrentHost::~CurrentHost() { current_host = previous_; }

}  // namespace devhost
