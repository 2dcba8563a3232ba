// The host's entries, which the table in entries.cpp lists one a line.
//
// Entries act for the current host and never throw: a plugin's mistake is recorded as a fault.
#pragma once

namespace devhost {

class Host;

void addEntries(Host& host);

}  // namespace devhost
