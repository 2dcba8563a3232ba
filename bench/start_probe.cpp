// start_probe PLUGIN: in a fresh process, does one after the other what the tool's start consists of, and prints a line
// "MICROSECONDS NAME" for each part: the loader's work by library, Foundation's first message, and the plugin's first
// answers. Needs an X server and a colord.
#include <dlfcn.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>

#include "devhost/runtime/host.h"

namespace {

using Clock = std::chrono::steady_clock;

Clock::time_point last = Clock::now();

void lap(const char* name) {
  const auto now = Clock::now();
  std::printf("%lld %s\n",
              static_cast<long long>(std::chrono::duration_cast<std::chrono::microseconds>(now - last).count()), name);
  last = Clock::now();
}

void load(std::initializer_list<const char*> libraries) {
  for (const char* const library : libraries) {
    if (dlopen(library, RTLD_LAZY | RTLD_GLOBAL) == nullptr) {
      std::fprintf(stderr, "%s\n", dlerror());
      std::exit(1);
    }
  }
}

template <typename Function>
Function* find(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_DEFAULT, name));
}

/// [NSAutoreleasePool new]: the message makes Foundation initialise its first classes, and its table of encodings.
void sendFirstMessage() {
  void* const receiver = find<void*(const char*)>("objc_getClass")("NSAutoreleasePool");
  void* const selector = find<void*(const char*)>("sel_registerName")("new");
  using Method = void* (*)(void*, void*);
  reinterpret_cast<Method>(find<void*(void*, void*)>("objc_msg_lookup")(receiver, selector))(receiver, selector);
}

std::uint32_t firstDisplay() {
  std::uint32_t display = 0;
  std::uint32_t count = 0;
  find<std::int32_t(std::uint32_t, std::uint32_t*, std::uint32_t*)>("CGGetActiveDisplayList")(1, &display, &count);
  return display;
}

void ask(const devhost::Plugin& plugin, std::uint32_t display) {
  plugin.call("GetName", {display});
  plugin.call("GetCGRect", {display});
  plugin.call("GetScale", {display});
  plugin.call("GetProfilePath", {display});
}

}  // namespace

int main(int, char** arguments) {
  load({"libobjc.so.4", "libicui18n.so.72", "libxslt.so.1", "libgnutls.so.30", "libavahi-client.so.3"});
  lap("loader: the libraries that Foundation needs");
  load({"libgnustep-base.so.1.28"});
  lap("loader: Foundation, with the registration of its classes");
  sendFirstMessage();
  lap("Foundation: first message");
  load({"libglib-2.0.so.0", "liblcms2.so.2", "libxcb-xrm.so.0", "libxcb-randr.so.0"});
  lap("loader: GLib, lcms2, xcb");
  load({"libcolord.so.2"});
  lap("loader: GIO, libcolord");
  load({OSTREVIN_PLATFORM_LIBRARY});
  lap("loader: libOstrevinPlatform");
  devhost::Host host;
  const devhost::Plugin plugin = host.load(arguments[1]);
  lap("loader: libOstrevin, and its registration");
  const std::uint32_t display = firstDisplay();
  lap("X: connect, read");
  plugin.call("GetProfilePath", {display});
  lap("bus: connect, read colord's devices");
  ask(plugin, display);
  lap("work: four methods of one display, asked again");
  return 0;
}
