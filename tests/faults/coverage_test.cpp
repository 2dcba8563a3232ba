// Every call of the plugin to a framework or to the host is tried: the library itself lists its calls.
#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>

#include "faults/fault_values.h"
#include "faults/matrix.h"
#include "faults/plugin_library.h"

namespace {

using faults::Scene;
using platform::calls::Call;
using testing::Contains;
using testing::IsEmpty;
using testing::IsSubsetOf;

using Names = std::set<std::string>;

/// Functions and variables of the frameworks that cannot fail, each with its reason.
const std::map<std::string, const char*> kCannotFail = {
    {"CFRetain", "only counts"},
    {"CFRelease", "only counts"},
    {"CFGetTypeID", "tells the types of values apart"},
    {"CFBooleanGetTypeID", "a constant"},
    {"CFDictionaryGetTypeID", "a constant"},
    {"CFNumberGetTypeID", "a constant"},
    {"CFStringGetTypeID", "a constant"},
    {"CFURLGetTypeID", "a constant"},
    {"CFUUIDGetTypeID", "a constant"},
    {"objc_enumerationMutation", "called only for a list that changes during a walk, which none does"},
};

/// The same, of the Objective-C runtime that the library was compiled for.
const std::map<std::string, const char*> kOfThisRuntime = {
    {"__CFStringMakeConstantString",
     "stands for a constant string, which a compiler for the Mac makes at compile time"},
    {"objc_lookup_class", "finds classes by their names when the library is loaded"},
    {"__objc_exec_class", "run when the library is loaded"},
    {"__gnu_objc_personality_v0", "part of unwinding"},
    {"objc_msg_lookup", "finds methods; their results are tried message by message"},
};
const std::map<std::string, const char*> kOfTheMacsRuntime = {
    {"objc_msgSend", "sends messages; their results are tried message by message"},
#ifndef __aarch64__
    {"objc_msgSend_stret", "sends messages that return structures; the same"},
#endif
};

std::map<std::string, const char*> cannotFail() {
  std::map<std::string, const char*> all = kCannotFail;
  all.merge(std::map(faults::isForMac(OSTREVIN_LIBRARY) ? kOfTheMacsRuntime : kOfThisRuntime));
  return all;
}

/// Constants and classes, by the prefixes of their names.
bool isConstant(const std::string& symbol) {
  return symbol.starts_with("kCF") || symbol.starts_with("kColorSync") || symbol.starts_with("kIO") ||
         symbol.starts_with("__objc_class_name_");
}

/// The undefined symbols of the plugin that the platform's library or the Objective-C run-time has.
Names frameworkSymbols() {
  const Names platform = faults::definedSymbols(OSTREVIN_PLATFORM_LIBRARY);
  Names symbols;
  for (const std::string& symbol : faults::undefinedSymbols(OSTREVIN_LIBRARY)) {
    if (platform.count(symbol) != 0 || symbol.find("objc") != std::string::npos) {
      symbols.insert(symbol);
    }
  }
  return symbols;
}

/// For tests that only read the file: ./test --mac shows which one was loaded.
void loadLibrary() {
  Scene scene;
  scene.load();
}

bool isTried(const std::string& symbol) {
  const auto call = platform::calls::find(symbol);
  return call && !faults::faultsOf(*call).empty();
}

TEST(FaultCoverage, EveryFrameworkSymbolIsTriedOrCannotFail) {
  loadLibrary();
  const Names symbols = frameworkSymbols();
  ASSERT_THAT(symbols, testing::IsSupersetOf({"CFEqual", "CGDisplayBounds", "dispatch_async", "kCFBooleanTrue"}));
  const auto cannot_fail = cannotFail();
  for (const std::string& symbol : symbols) {
    EXPECT_TRUE(isTried(symbol) || cannot_fail.count(symbol) != 0 || isConstant(symbol))
        << symbol << " is called by the plugin and in no table of this folder";
  }
}

TEST(FaultCoverage, NoListHasASymbolThatThePluginLacks) {
  loadLibrary();
  const Names symbols = frameworkSymbols();
  const Names selectors = faults::sentSelectors(OSTREVIN_LIBRARY);
  for (const auto& [symbol, reason] : cannotFail()) {
    if (symbol != "__gnu_objc_personality_v0") {  // left out by compilers that find nothing to unwind
      EXPECT_THAT(symbols, Contains(symbol));
    }
  }
  for (std::size_t i = 0; i < platform::calls::kCallCount; ++i) {
    const auto call = static_cast<Call>(i);
    const std::string name = platform::calls::name(call);
    if (faults::faultsOf(call).empty()) {
      EXPECT_EQ(symbols.count(name), 0U) << name;
    } else if (name.starts_with("NSScreen_")) {
      EXPECT_THAT(selectors, Contains(name.substr(9)));
    } else {
      EXPECT_THAT(symbols, Contains(name));
    }
  }
}

// --- messages

/// Messages that cannot fail. Lists are tried as a whole.
const Names kSafeMessages = {"countByEnumeratingWithState:objects:count:"};

/// Sent by the block runtime inside this system's library. They only count.
const Names kMessagesOfBlocks = {"retain", "release"};

/// Sent only by exported functions that no method reaches.
const Names kMessagesOfOthers = {"ISOCountryCodes",
                                 "ISOLanguageCodes",
                                 "containsString:",
                                 "count",
                                 "dataUsingEncoding:allowLossyConversion:",
                                 "fileURLWithPath:isDirectory:",
                                 "instancesRespondToSelector:",
                                 "isOperatingSystemAtLeastVersion:",
                                 "lastPathComponent",
                                 "objectAtIndex:",
                                 "processInfo",
                                 "rangeOfString:"};

Names triedMessages() {
  Names messages;
  for (const auto& message : faults::messageFaults()) {
    messages.insert(message.selector);
  }
  for (const char* const screens : {"screens", "mainScreen", "frame", "backingScaleFactor"}) {
    messages.insert(screens);
  }
  return messages;
}

TEST(FaultCoverage, EveryMessageIsTriedOrCannotFail) {
  loadLibrary();
  const Names selectors = faults::sentSelectors(OSTREVIN_LIBRARY);
  ASSERT_THAT(selectors, Contains("UTF8String"));
  Names known = triedMessages();
  known.insert(kSafeMessages.begin(), kSafeMessages.end());
  known.insert(kMessagesOfOthers.begin(), kMessagesOfOthers.end());
  if (!faults::isForMac(OSTREVIN_LIBRARY)) {
    known.insert(kMessagesOfBlocks.begin(), kMessagesOfBlocks.end());
  }
  EXPECT_EQ(selectors, known);
}

TEST(FaultCoverage, MethodsSendTriedMessagesOnly) {
  Scene scene;
  scene.load();
  for (const faults::Question& question : faults::questions()) {
    EXPECT_EQ(scene.run(question.ask).result, question.right) << question.name;
  }
  Names known = triedMessages();
  known.insert(kSafeMessages.begin(), kSafeMessages.end());
  known.insert(kMessagesOfBlocks.begin(), kMessagesOfBlocks.end());
  EXPECT_THAT(faults::messagesSent(), IsSubsetOf(known));
  for (const std::string& message : triedMessages()) {
    EXPECT_THAT(faults::messagesSent(), Contains(message));
  }
}

// --- the host

TEST(FaultCoverage, EveryHostEntryIsTried) {
  Scene scene;
  scene.load();
  for (const faults::Question& question : faults::questions()) {
    scene.run(question.ask);
  }
  const Names looked_up(scene.host.entries().lookups().begin(), scene.host.entries().lookups().end());
  Names walked;
  for (const auto& fault : faults::hostFaults()) {
    walked.insert(fault.entry);
  }
  walked.insert("RegisterPluginVersion");  // deliberately not tested for: a host without it is not supported
  EXPECT_EQ(looked_up, walked);
}

/// The library contains the slots of the members that it calls, one for each entry.
TEST(FaultCoverage, EveryHostCallMemberHasATriedEntry) {
  loadLibrary();
  std::size_t slots = 0;
  for (const auto& [symbol, offset] : faults::ownSymbols(OSTREVIN_LIBRARY)) {
    slots += symbol.starts_with("_ZN4host5slots") && symbol.ends_with("7addressE") ? 1 : 0;
  }
  Names walked;
  for (const auto& fault : faults::hostFaults()) {
    walked.insert(fault.entry);
  }
  constexpr std::size_t kGlobalMethods = 1;  // "LenB", which is found through an entry
  EXPECT_EQ(slots, walked.size() + kGlobalMethods);
}

// --- methods and expectations

TEST(FaultCoverage, EveryMethodIsAsked) {
  Scene scene;
  scene.load();
  const auto& methods = scene.plugin().module().methods;
  ASSERT_EQ(methods.size(), 15U);
  for (const auto& method : methods) {
    EXPECT_TRUE(std::any_of(faults::questions().begin(), faults::questions().end(),
                            [&](const faults::Question& question) { return question.name == method.declaration.name; }))
        << method.declaration.name;
  }
}

TEST(FaultCoverage, EveryExpectationIsTried) {
  Names tried;
  for (std::size_t i = 0; i < platform::calls::kCallCount; ++i) {
    if (!faults::faultsOf(static_cast<Call>(i)).empty()) {
      tried.insert(platform::calls::name(static_cast<Call>(i)));
    }
  }
  for (const auto& edit : faults::dictionaryEdits()) {
    tried.insert(edit.what);
  }
  for (const auto& message : faults::messageFaults()) {
    tried.insert(message.selector);
  }
  for (const auto& fault : faults::hostFaults()) {
    tried.insert(fault.entry);
  }
  EXPECT_THAT(faults::expectedSubjects(), IsSubsetOf(tried));
}

}  // namespace
