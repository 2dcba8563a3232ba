// Objects, their methods and their classes, through the family.
#include "host_end_to_end/family_test.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class Objects : public FamilyTest {
 protected:
  static REALclassRefStruct* classOf(const char* name) {
    return reinterpret_cast<REALclassRefStruct*>(REALGetClassRef(name));
  }
};

TEST_F(Objects, AreLockedAndUnlocked) {
  const devhost::Ref<devhost::Object> object = host_.makeObject();
  REALLockObject(handleOf(object));
  REALLockObject(handleOf(object));
  EXPECT_EQ(object->pluginReferences(), 2U);
  REALUnlockObject(handleOf(object));
  REALUnlockObject(handleOf(object));
  EXPECT_EQ(object->references(), 1U);
}

TEST_F(Objects, ReleasedOnceTooOftenAreNotedAsAFault) {
  const devhost::Ref<devhost::Object> object = host_.makeObject();
  REALUnlockObject(handleOf(object));
  EXPECT_THAT(takeFaults(), ElementsAre(HasSubstr("REALUnlockObject")));
}

TEST_F(Objects, HaveTheirMethodsCalledWithTheArgumentsGiven) {
  const devhost::Ref<devhost::Object> object = host_.makeObject("Listener");
  std::vector<std::string> heard;
  object->addMethod("DisplayProfileFound( name as String, path as String )",
                    [&](devhost::Object& self, devhost::Values& arguments) -> devhost::Value {
                      heard = {self.className(), arguments[0].text(), arguments[1].text()};
                      return {};
                    });
  void* const found = REALLoadObjectMethod(handleOf(object), "DisplayProfileFound( name as String, path as String )");
  ASSERT_NE(found, nullptr);
  host::invoke<void>(found, handleOf(object), build("sRGB"), build("/a.icc"));
  EXPECT_THAT(heard, ElementsAre("Listener", "sRGB", "/a.icc"));
}

TEST_F(Objects, HaveNoMethodOfAnotherSignature) {
  const devhost::Ref<devhost::Object> object = host_.makeObject();
  object->addMethod("Found( name as String )", [](devhost::Object&, devhost::Values&) { return devhost::Value(); });
  EXPECT_EQ(REALLoadObjectMethod(handleOf(object), "Found( name as Integer )"), nullptr);
  EXPECT_EQ(REALLoadObjectMethod(handleOf(object), "Lost( name as String )"), nullptr);
  EXPECT_EQ(REALLoadObjectMethod(nullptr, "Found( name as String )"), nullptr);
}

TEST_F(Objects, NeedNoModuleForAMethodOfTheFramework) {
  const int module = 0;
  void* const loaded = REALLoadGlobalMethod(&module, "LenB( s as string ) as integer");
  EXPECT_NE(loaded, nullptr);
  EXPECT_EQ(loaded, REALLoadFrameworkMethod("LenB( s as string ) as integer"));
  ASSERT_EQ(host_.globalMethods().lookups().size(), 2U);
  EXPECT_EQ(host_.globalMethods().lookups()[0].module, nullptr);
  EXPECT_EQ(REALLoadFrameworkMethod("LenQ( s as string ) as integer"), nullptr);
}

TEST_F(Objects, AreMadeOfAClassByItsReference) {
  REALclassRefStruct* const reference = classOf("Listener");
  EXPECT_EQ(reference, classOf("LISTENER"));
  for (REALobjectStruct* const object : {REALnewInstance(reference), REALnewInstanceWithClass(reference)}) {
    EXPECT_EQ(host_.handles().find<devhost::Object>(object, "test")->className(), "Listener");
    REALUnlockObject(object);
  }
  EXPECT_EQ(living(devhost::Counted::Kind::kObject), 0U);
}

TEST_F(Objects, AreMadeOfAClassByItsName) {
  auto* const object = reinterpret_cast<REALobjectStruct*>(REALnewInstanceOfClass("Listener"));
  EXPECT_TRUE(REALObjectIsA(object, classOf("Listener")));
  REALUnlockObject(object);
}

TEST_F(Objects, AreMadeLikeAnother) {
  const devhost::Ref<devhost::Object> first = host_.makeObject("Listener");
  REALobjectStruct* const second = REALnewInstance(handleOf(first));
  EXPECT_NE(second, handleOf(first));
  EXPECT_TRUE(REALObjectIsA(second, classOf("Listener")));
  REALUnlockObject(second);
}

TEST_F(Objects, AreOfTheirClassAndOfClassObject) {
  const devhost::Ref<devhost::Object> object = host_.makeObject("Listener");
  EXPECT_TRUE(REALObjectIsA(handleOf(object), classOf("Listener")));
  EXPECT_TRUE(REALObjectIsA(handleOf(object), classOf("Object")));
  EXPECT_FALSE(REALObjectIsA(handleOf(object), classOf("Variant")));
  EXPECT_FALSE(REALObjectIsA(static_cast<REALobjectStruct*>(nullptr), classOf("Object")));
}

TEST_F(Objects, OfNoClassAreNotMade) {
  EXPECT_EQ(classOf(""), nullptr);
  EXPECT_EQ(classOf(nullptr), nullptr);
  EXPECT_EQ(REALnewInstanceWithClass(nullptr), nullptr);
  EXPECT_EQ(REALnewInstanceOfClass(""), 0);
  EXPECT_EQ(REALnewInstance(static_cast<REALobjectStruct*>(nullptr)), nullptr);
}

TEST_F(Objects, OfWhatIsNoReferenceToAClassAreNotMadeAndNotedAsAFault) {
  int stranger = 0;
  EXPECT_EQ(REALnewInstanceWithClass(reinterpret_cast<REALclassRefStruct*>(&stranger)), nullptr);
  EXPECT_THAT(takeFaults(), ElementsAre(HasSubstr("CreateInstance: not a reference to a class")));
}

}  // namespace
