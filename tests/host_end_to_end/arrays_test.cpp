// Arrays as a whole, and the readers that need no element procedure.
#include "host_end_to_end/family_test.h"

namespace {

using devhost::Type;

class Arrays : public FamilyTest {};

TEST_F(Arrays, OfEveryTypeBeginEmptyOrAtTheirUpperBound) {
  for (const Type type : devhost::kElementTypes) {
    for (const long long upper_bound : {-1, 0, 9}) {
      REALarrayStruct* const array = REALCreateArray(devhost::codeOfElementType(type), upper_bound);
      ASSERT_NE(array, nullptr);
      EXPECT_EQ(REALGetArrayUBound(array), upper_bound) << devhost::factsOf(type).name;
      handOver(array);
    }
  }
  EXPECT_EQ(living(devhost::Counted::Kind::kArray), 0U);
}

TEST_F(Arrays, OfStringsHaveTheCodeThatEveryPluginUses) {
  REALarrayStruct* const array = REALCreateArray(kHostArrayOfStrings, -1);
  REALInsertArrayValueString(array, 0, build("a"));
  EXPECT_EQ(host_.handles().take<devhost::Array>(array, "test")->texts(), std::vector<std::string>{"a"});
}

TEST_F(Arrays, OfUnknownTypesOrImpossibleBoundsAreNotMade) {
  EXPECT_EQ(REALCreateArray(0, -1), nullptr);
  EXPECT_EQ(REALCreateArray(19, -1), nullptr);
  EXPECT_EQ(REALCreateArray(kHostArrayOfStrings, -2), nullptr);
  EXPECT_EQ(takeFaults().size(), 3U);
}

TEST_F(Arrays, ThatAreNullHaveNoElements) { EXPECT_EQ(REALGetArrayUBound(static_cast<REALarrayStruct*>(nullptr)), -1); }

TEST_F(Arrays, OfNumbersAreReadDirectly) {
  REALarrayStruct* const array = REALCreateArray(devhost::codeOfElementType(Type::kInteger), -1);
  REALInsertArrayValueInteger(array, 0, INT64_MIN);
  REALInsertArrayValueInteger(array, 1, INT64_MAX);
  EXPECT_EQ(REALGetArrayInt(array, 0LL), INT64_MIN);
  EXPECT_EQ(REALGetArrayInt(array, 1LL), INT64_MAX);
  EXPECT_EQ(REALGetArrayInt(array, 2LL), 0);
  EXPECT_EQ(REALGetArrayInt(array, -1LL), 0);
  handOver(array);
}

TEST_F(Arrays, OfStringsAreReadDirectlyWithoutAReference) {
  REALarrayStruct* const array = REALCreateArray(kHostArrayOfStrings, -1);
  REALstringStruct* const string = build("a");
  REALInsertArrayValueString(array, 0, string);
  EXPECT_EQ(REALGetArrayString(array, 0LL), reinterpret_cast<std::intptr_t>(string));
  EXPECT_EQ(REALGetArrayString(array, 1LL), 0);
  EXPECT_EQ(host_.unreleasedStrings().size(), 0U);
  handOver(array);
}

TEST_F(Arrays, OfObjectsAreReadDirectlyWithoutAReference) {
  REALarrayStruct* const array = REALCreateArray(devhost::codeOfElementType(Type::kObject), -1);
  REALobjectStruct* const object = REALNewVariantInt32(7);
  REALInsertArrayValueObject(array, 0, object);
  EXPECT_EQ(REALGetArrayObject(array, 0LL), reinterpret_cast<std::intptr_t>(object));
  EXPECT_EQ(REALGetArrayObject(array, 1LL), 0);
  handOver(array);
  EXPECT_EQ(living(devhost::Counted::Kind::kObject), 0U);
}

}  // namespace
