#include "devhost/entries/entries.h"

#include "devhost/runtime/host.h"

namespace devhost {

void addAllEntries(Host& host) {
  addRegistrationEntries(host);
  addStringEntries(host);
  addTextEntries(host);
  addObjectEntries(host);
  addClassEntries(host);
  addPropertyEntries(host);
  addVariantEntries(host);
  addArrayEntries(host);
  addArrayElementEntries(host);
  addMemoryEntries(host);
  addRuntimeEntries(host);
}

void addEntries(Host& host, std::span<const Entry> entries) {
  for (const Entry& entry : entries) {
    host.entries().set(entry.name, entry.function);
  }
}

}  // namespace devhost
