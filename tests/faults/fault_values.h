// What framework calls, dictionaries, messages and host entries return instead of the truth.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "devhost/entries/host.h"
#include "frameworks/hooks/calls.h"

namespace faults {

// --- framework calls

struct NamedFault {
  std::string name;  ///< such as "null", "a number", "code -1"
  platform::calls::Fault fault;
};

/// Every fault that is tried of the call; at least one.
const std::vector<NamedFault>& faultsOf(platform::calls::Call call);

// --- dictionaries

/// One change to a dictionary that a call returns.
struct DictionaryEdit {
  std::string what;  ///< the key, such as "DeviceID", or the dictionary as a whole, such as "DeviceEntry"
  std::string name;  ///< the change, such as "missing" or "a number"
  platform::calls::Call call;
  platform::calls::Edit edit;
};

/// For every call that returns dictionaries: every key missing and of every wrong type, the dictionary null and
/// empty.
const std::vector<DictionaryEdit>& dictionaryEdits();

// --- messages to Foundation's objects

struct MessageFault {
  std::string selector;
  std::string name;  ///< such as "null"
  const void* result;
};

inline std::ostream& operator<<(std::ostream& out, const MessageFault& fault) {
  return out << fault.selector << ": " << fault.name;
}

const std::vector<MessageFault>& messageFaults();

// --- entries of the host

struct HostFault {
  std::string entry;
  std::string name;  ///< such as "missing" or "null"
  /// Changes the host's table. Before the plugin is loaded: it looks an entry up once.
  std::function<void(devhost::Host&)> apply;
};

inline std::ostream& operator<<(std::ostream& out, const HostFault& fault) {
  return out << fault.entry << ": " << fault.name;
}

/// For every entry that the plugin looks up.
const std::vector<HostFault>& hostFaults();

// --- objects of every type; they live for the life of the process

struct NamedObject {
  std::string name;  ///< such as "a number"
  CFTypeRef object;
};

/// One of each type, with "an array", whose element is a number, and "an object" of no CoreFoundation type.
const std::vector<NamedObject>& sampleObjects();
/// The one of that name. Throws std::out_of_range when there is none.
CFTypeRef sampleObject(const std::string& name);

CFStringRef emptyString();
/// A string that has no UTF-8 form: half of a surrogate pair.
CFStringRef brokenString();
CFTypeRef emptyArray();
CFDictionaryRef emptyDictionary();
/// The same one each time, with its earlier contents.
CFDictionaryRef mutableDictionary();
CFDataRef emptyData();
/// 7 bytes, which is shorter than any tag element.
CFDataRef shortData();

}  // namespace faults
