#include "devhost/calling/plugin.h"

#include <dlfcn.h>

namespace devhost {
namespace {

constexpr const char* kEntryName = "REALPluginMain";

using PluginMain = void (*)(Resolver);

}  // namespace

Plugin::Plugin(Runtime& runtime, std::string path) : runtime_(&runtime), path_(std::move(path)) {
  loadLibrary();
  letRegister();
}

void Plugin::loadLibrary() {
  library_ = dlopen(path_.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library_ == nullptr) {
    const char* const reason = dlerror();
    throw PluginError("cannot load the plugin: " + (reason == nullptr ? path_ : std::string(reason)));
  }
  findAutoreleasePools(library_);
}

void Plugin::letRegister() {
  const auto main = reinterpret_cast<PluginMain>(symbol(kEntryName));
  if (main == nullptr) {
    throw PluginError(path_ + " is not a plugin: it does not export " + kEntryName);
  }
  runtime_->registration() = {};
  {
    const CurrentRuntime current(*runtime_);
    const AutoreleasePool pool;
    main(Runtime::resolver());
  }
  const Registration& registration = runtime_->registration();
  if (!registration.announced_versions.empty()) {
    announced_version_ = registration.announced_versions.back();
  }
  if (registration.module_records.empty()) {
    throw PluginError(path_ + " registers no module");
  }
  for (const void* record : registration.module_records) {
    try {
      modules_.push_back(readModule(record));
    } catch (const PluginError& error) {
      throw PluginError(path_ + ": " + error.what());
    }
  }
}

const Method* Plugin::findMethod(std::string_view name) const {
  for (const Module& module : modules_) {
    for (const Method& method : module.methods) {
      if (sameName(method.declaration.name, name)) {
        return &method;
      }
    }
  }
  return nullptr;
}

CallResult Plugin::call(std::string_view name, const Values& arguments) const {
  const Method* const method = findMethod(name);
  if (method == nullptr) {
    throw ValueError("no method is called " + std::string(name));
  }
  return callFunction(*runtime_, method->declaration, method->function, arguments);
}

void* Plugin::symbol(const char* name) const { return dlsym(library_, name); }

}  // namespace devhost
