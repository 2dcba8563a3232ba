// Which host entries the methods call, and in which order: entries that record their calls replace the host's.
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "devhost/calling/native_call.h"
#include "host/call.h"
#include "tests/contract/fixture.h"

namespace {

using contract::MethodTest;
using testing::ElementsAre;

/// An opaque handle.
template <int kNumber>
void* handle() {
  static char place;
  return &place;
}

class HostCalls : public MethodTest {
 protected:
  HostCalls() {
    notes.clear();
    slot = nullptr;
  }

  /// Calls the method's function as the host would: with handles that are of the host's own types.
  template <typename Result = void, typename... Arguments>
  Result call(const char* method, Arguments... arguments) const {
    const devhost::AutoreleasePool pool;
    return host::invoke<Result>(const_cast<void*>(plugin.findMethod(method)->function), arguments...);
  }

  static inline std::vector<std::string> notes;
  static inline void* slot = nullptr;  ///< the variable of the host that goes by reference
};

class ByReferenceStrings : public HostCalls {
 protected:
  ByReferenceStrings() {
    host.entries().set("REALBuildStringWithEncoding", &build);
    host.entries().set("REALUnlockString", &unlock);
  }

  static void* build(const char* bytes, int length, std::uint32_t encoding) {
    EXPECT_EQ(encoding, devhost::kUtf8Encoding);
    notes.push_back("build \"" + std::string(bytes, static_cast<std::size_t>(length)) + "\"");
    return handle<2>();
  }
  static void unlock(void* string) {
    notes.push_back(std::string("unlock ") + (string == nullptr ? "null" : "the old string") +
                    (slot == string ? ", which the variable still holds" : ""));
  }

  void expectTheOldStringGoesOnceTheNewOneIsThere(const char* text) {
    EXPECT_THAT(notes, ElementsAre("build \"" + std::string(text) + "\"",
                                   "unlock the old string, which the variable still holds"));
    EXPECT_EQ(slot, handle<2>());
  }
};

TEST_F(ByReferenceStrings, GetNameReleasesTheOldStringLast) {
  slot = handle<1>();
  call("GetName", std::uint32_t{1}, &slot);
  expectTheOldStringGoesOnceTheNewOneIsThere("Notebook");
}

TEST_F(ByReferenceStrings, GetProfilePathReleasesTheOldStringLast) {
  slot = handle<1>();
  call("GetProfilePath", std::uint32_t{1}, &slot);
  expectTheOldStringGoesOnceTheNewOneIsThere("/a.icc");
}

TEST_F(ByReferenceStrings, QV02ReadReleasesTheOldStringLast) {
  slot = handle<1>();
  void* const no_path = nullptr;
  EXPECT_EQ(call<std::int32_t>("QV02Read", no_path, &slot), 466);
  expectTheOldStringGoesOnceTheNewOneIsThere("");
}

TEST_F(ByReferenceStrings, NullOldStringsAreReleased) {
  call("GetName", std::uint32_t{1}, &slot);
  EXPECT_THAT(notes, ElementsAre("build \"Notebook\"", "unlock null, which the variable still holds"));
}

TEST_F(HostCalls, ICCTagExistsReadsThePathBeforeTheTag) {
  host.entries().set(
      "StringGetCString", +[](void* string) -> const char* {
        notes.emplace_back(string == handle<1>() ? "path" : "tag");
        return "";
      });
  EXPECT_FALSE(call<bool>("ICCTagExists", handle<1>(), handle<2>()));
  EXPECT_THAT(notes, ElementsAre("path", "tag"));
}

/// An object's method; it sets the second object as soon as it is called.
class ProfileFound : public HostCalls {
 protected:
  ProfileFound() {
    set_object = [this](void* object) { call("SetObject", object); };
    host.entries().set(
        "REALLoadObjectMethod", +[](void* object, const char*) -> void* {
          notes.push_back("find the method of the " + nameOf(object));
          return reinterpret_cast<void*>(&found);
        });
  }

  static void found(void* object, void*, void*) {
    notes.push_back("call it for the " + nameOf(object));
    set_object(handle<2>());
  }
  static std::string nameOf(void* object) { return object == handle<1>() ? "first" : "second"; }

  static inline std::function<void(void*)> set_object;
};

TEST_F(ProfileFound, IsCalledForTheObjectSetAtThatMoment) {
  call("SetObject", handle<1>());
  call("ListAllInstalledProfiles");
  EXPECT_THAT(notes, ElementsAre("find the method of the first", "call it for the first", "call it for the second",
                                 "call it for the second"));
}

}  // namespace
