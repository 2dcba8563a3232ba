// The groups of host entries that this host offers; each group is one file with one line per entry.
//
// Where a plugin's side of an entry is fixed by contract, the entry has exactly those arguments. Where it is not, the
// arguments are this host's own choice, and stand in the entry's line. Entries act for the current host, and never
// throw: what a plugin does wrong is noted as a fault of it.
#pragma once

#include <span>

#include "devhost/entries/entry_table.h"

namespace devhost {

class Host;

void addRegistrationEntries(Host& host);
void addStringEntries(Host& host);
void addTextEntries(Host& host);
void addObjectEntries(Host& host);
void addClassEntries(Host& host);
void addPropertyEntries(Host& host);
void addVariantEntries(Host& host);
void addArrayEntries(Host& host);
void addArrayElementEntries(Host& host);
void addMemoryEntries(Host& host);
void addRuntimeEntries(Host& host);
void addAllEntries(Host& host);

void addEntries(Host& host, std::span<const Entry> entries);

}  // namespace devhost
