// The host's resolver: the one function through which everything else of the host is found.
//
// The library's entry point stores the resolver once, before anything else happens; from then on it is only read, on
// the host's thread.
#pragma once

/// Maps the name of a host entry, a NUL-terminated string, to the entry's address, or to null when the host has none.
using REALresolver = void* (*)(const char* name);

/// Null until the host has handed its resolver over.
extern REALresolver gResolver;

/// Asks the host for the entry `name` and returns its answer unchanged. Nothing is remembered here.
/// The resolver is deliberately not tested for null: nothing may call the host before the host has called us.
void* CallResolver(const char* name);
