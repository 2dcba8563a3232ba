#include "host/objects.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "recording_host.h"
#include "sample_arguments.h"

namespace {

using ::testing::ElementsAre;

class ObjectCalls : public ::testing::Test {
 protected:
  ObjectCalls() {
    namespace slots = host::slots;
    for (void** slot : {&slots::REALLoadFrameworkMethod::address, &slots::REALnewInstance::address,
                        &slots::REALnewInstanceWithClass::address, &slots::REALLoadObjectMethod::address}) {
      *slot = nullptr;
    }
  }

  RecordingHost host_;
};

TEST_F(ObjectCalls, LoadFrameworkMethodHandsANullModuleAndTheDeclarationOver) {
  host_.offer("REALLoadGlobalMethod", &recordCall);
  gRecorded.integers[0] = 1;
  gAnswer = 0x7182'8384'8586'8788;
  const char* const declaration = "Beep()";
  EXPECT_EQ(REALLoadFrameworkMethod(declaration), reinterpret_cast<void*>(gAnswer));
  EXPECT_EQ(REALLoadFrameworkMethod(declaration), reinterpret_cast<void*>(gAnswer));
  EXPECT_THAT(host_.asked(), ElementsAre("REALLoadGlobalMethod"));
  EXPECT_EQ(gRecorded.count, 2);
  EXPECT_EQ(gRecorded.integers[0], 0U);
  EXPECT_EQ(gRecorded.integers[1], reinterpret_cast<std::uintptr_t>(declaration));
}

TEST_F(ObjectCalls, LoadFrameworkMethodIsNullAndAsksAgainWhileTheHostLacksTheEntry) {
  EXPECT_EQ(REALLoadFrameworkMethod("Beep()"), nullptr);
  EXPECT_EQ(REALLoadFrameworkMethod("Beep()"), nullptr);
  EXPECT_THAT(host_.asked(), ElementsAre("REALLoadGlobalMethod", "REALLoadGlobalMethod"));
}

TEST_F(ObjectCalls, LoadGlobalMethodHandsANullModuleOverWhateverTheModuleIs) {
  host_.offer("REALLoadGlobalMethod", &recordCall);
  const char* const declaration = "Beep()";
  for (void* module : {static_cast<void*>(nullptr), sample<void*>(1)}) {
    gRecorded.integers[0] = 1;
    gAnswer = 0x1234;
    EXPECT_EQ(REALLoadGlobalMethod(module, declaration), reinterpret_cast<void*>(0x1234));
    EXPECT_EQ(gRecorded.integers[0], 0U);
    EXPECT_EQ(gRecorded.integers[1], reinterpret_cast<std::uintptr_t>(declaration));
  }
  REALLoadFrameworkMethod(declaration);
  EXPECT_THAT(host_.asked(), ElementsAre("REALLoadGlobalMethod")) << "both are one member to the host";
}

TEST_F(ObjectCalls, LoadObjectMethodPassesANullObjectOn) {
  host_.offer("REALLoadObjectMethod", &recordCall);
  gRecorded.integers[0] = 1;
  EXPECT_EQ(REALLoadObjectMethod(nullptr, "Beep()"), nullptr);
  EXPECT_EQ(gRecorded.count, 1);
  EXPECT_EQ(gRecorded.integers[0], 0U);
}

TEST_F(ObjectCalls, NewInstanceOfAClassReferenceReachesTheEntryForClasses) {
  host_.offer("CreateInstance", &recordCall);
  gAnswer = 0x1234;
  auto* const classRef = sample<REALclassRefStruct*>(1);
  EXPECT_EQ(REALnewInstance(classRef), reinterpret_cast<REALobjectStruct*>(0x1234));
  EXPECT_EQ(gRecorded.integers[0], reinterpret_cast<std::uintptr_t>(classRef));
  REALnewInstanceWithClass(classRef);
  EXPECT_THAT(host_.asked(), ElementsAre("CreateInstance"));
}

TEST_F(ObjectCalls, NewInstanceOfAnyOtherHandleReachesItsOwnEntryThroughOneSlot) {
  host_.offer("PluginNewInstance", &recordCall);
  gAnswer = 0x1234;
  EXPECT_EQ(REALnewInstance(sample<REALstringStruct*>(1)), reinterpret_cast<REALobjectStruct*>(0x1234));
  EXPECT_EQ(REALnewInstance("Timer"), reinterpret_cast<REALobjectStruct*>(0x1234));
  EXPECT_STREQ(reinterpret_cast<const char*>(gRecorded.integers[0]), "Timer");
  EXPECT_THAT(host_.asked(), ElementsAre("PluginNewInstance"));
}

}  // namespace
