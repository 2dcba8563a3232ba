// The state of the host itself, as Host::runtime() has it.
#include "devhost/entries/entries.h"
#include "devhost/runtime/host.h"

namespace devhost {
namespace {

std::uint64_t inRuntime() { return Host::current().runtime().runs_program ? 1 : 0; }

std::uint64_t inDebugMode() { return Host::current().runtime().debugs ? 1 : 0; }

double version() { return Host::current().runtime().version; }

void yield() { ++Host::current().runtime().yields; }

const Entry kEntries[] = {
    entry("REALinRuntime", inRuntime),      // () -> bool
    entry("REALInDebugMode", inDebugMode),  // () -> bool
    entry("REALGetRBVersion", version),     // () -> double
    entry("REALYieldToRB", yield),          // ()
};

}  // namespace

void addRuntimeEntries(Host& host) { addEntries(host, kEntries); }

}  // namespace devhost
