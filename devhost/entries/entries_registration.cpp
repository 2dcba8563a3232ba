// Entries that a plugin calls while it is loaded.
#include "devhost/entries/entries.h"
#include "devhost/runtime/host.h"

namespace devhost {
namespace {

void registerPluginVersion(int version) { Host::current().registration().announced_versions.push_back(version); }

void registerModule(const void* record) { Host::current().registration().module_records.push_back(record); }

const Entry kEntries[] = {
    entry("RegisterPluginVersion", registerPluginVersion),
    entry("PluginRegisterModule", registerModule),
};

}  // namespace

void addRegistrationEntries(Host& host) { addEntries(host, kEntries); }

}  // namespace devhost
