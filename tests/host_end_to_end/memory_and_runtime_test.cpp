// Memory blocks and the state of the host, through the family.
#include "host_end_to_end/family_test.h"

namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class MemoryBlocks : public FamilyTest {};

TEST_F(MemoryBlocks, HaveTheirSizeAndBytesOfZero) {
  auto* const block = reinterpret_cast<REALobjectStruct*>(REALNewMemoryBlock(16));
  EXPECT_EQ(REALMemoryBlockGetSize(block), 16);
  const auto* const bytes = reinterpret_cast<const unsigned char*>(REALMemoryBlockGetPtr(block));
  ASSERT_NE(bytes, nullptr);
  EXPECT_THAT(std::vector<unsigned char>(bytes, bytes + 16), Each(0));
  REALUnlockObject(block);
  EXPECT_EQ(living(devhost::Counted::Kind::kObject), 0U);
}

TEST_F(MemoryBlocks, KeepWhatIsWrittenIntoThem) {
  auto* const block = reinterpret_cast<REALobjectStruct*>(REALNewMemoryBlock(5));
  std::memcpy(reinterpret_cast<void*>(REALMemoryBlockGetPtr(block)), "bytes", 5);
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(REALMemoryBlockGetPtr(block)), 5), "bytes");
  REALUnlockObject(block);
}

TEST_F(MemoryBlocks, MayHaveNoBytes) {
  auto* const block = reinterpret_cast<REALobjectStruct*>(REALNewMemoryBlock(0));
  ASSERT_NE(block, nullptr);
  EXPECT_EQ(REALMemoryBlockGetSize(block), 0);
  REALUnlockObject(block);
}

TEST_F(MemoryBlocks, StandForMemoryOfOthersWithoutKnowingItsSize) {
  int target = 7;
  auto* const block = reinterpret_cast<REALobjectStruct*>(REALPtrToMemoryBlock(&target));
  EXPECT_EQ(REALMemoryBlockGetPtr(block), reinterpret_cast<std::intptr_t>(&target));
  EXPECT_EQ(REALMemoryBlockGetSize(block), -1);
  REALUnlockObject(block);
  EXPECT_EQ(target, 7);
}

TEST_F(MemoryBlocks, OfAnImpossibleSizeAreNotMade) {
  EXPECT_EQ(REALNewMemoryBlock(-1), 0);
  EXPECT_THAT(takeFaults(), ElementsAre(HasSubstr("newMemoryBlock: -1 bytes")));
}

TEST_F(MemoryBlocks, AreNotWhatOtherObjectsAre) {
  const devhost::Ref<devhost::Object> object = host_.makeObject();
  EXPECT_EQ(REALMemoryBlockGetPtr(handleOf(object)), 0);
  EXPECT_EQ(REALMemoryBlockGetSize(handleOf(object)), 0);
  EXPECT_THAT(takeFaults(), ElementsAre(HasSubstr("is no memory block"), HasSubstr("is no memory block")));
}

class Runtime : public FamilyTest {};

TEST_F(Runtime, IsAsTheHostSaysItIs) {
  for (const bool truth : {true, false}) {
    host_.runtime().runs_program = truth;
    host_.runtime().debugs = !truth;
    EXPECT_EQ(REALinRuntime(), truth);
    EXPECT_EQ(REALInDebugMode(), !truth);
  }
  host_.runtime().version = 20.5;
  EXPECT_EQ(REALGetRBVersion(), 20.5);
}

TEST_F(Runtime, IsGivenTime) {
  REALYieldToRB();
  REALYieldToRB();
  EXPECT_EQ(host_.runtime().yields, 2);
}

}  // namespace
