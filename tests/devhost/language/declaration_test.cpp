// The parser of the host's method declarations.
#include "devhost/language/declaration.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace devhost {
namespace {

using ::testing::HasSubstr;

std::string errorOf(std::string_view text) {
  try {
    parseDeclaration(text);
  } catch (const DeclarationError& error) {
    return error.what();
  }
  return "no error";
}

TEST(ParseDeclaration, ReadsMethodWithoutParametersAndResult) {
  const Declaration declaration = parseDeclaration("Refresh()");
  EXPECT_EQ(declaration.text, "Refresh()");
  EXPECT_EQ(declaration.name, "Refresh");
  EXPECT_TRUE(declaration.parameters.empty());
  EXPECT_FALSE(declaration.result.has_value());
}

TEST(ParseDeclaration, ReadsByReferenceParametersAndResult) {
  const Declaration declaration = parseDeclaration("Name(displayID As UInt32, byref name As String) As Boolean");
  ASSERT_EQ(declaration.parameters.size(), 2U);
  EXPECT_EQ(declaration.parameters[0].name, "displayID");
  EXPECT_EQ(declaration.parameters[0].type.type, Type::kUInt32);
  EXPECT_FALSE(declaration.parameters[0].by_reference);
  EXPECT_EQ(declaration.parameters[1].name, "name");
  EXPECT_EQ(declaration.parameters[1].type.type, Type::kString);
  EXPECT_TRUE(declaration.parameters[1].by_reference);
  EXPECT_EQ(declaration.result->type, Type::kBoolean);
  EXPECT_EQ(declaration.valueParameterCount(), 1U);
}

TEST(ParseDeclaration, ReadsArrayResult) {
  const Declaration declaration = parseDeclaration("Paths() As String()");
  EXPECT_TRUE(declaration.result->is_array);
  EXPECT_EQ(declaration.result->type, Type::kString);
  EXPECT_EQ(declaration.result->text(), "String()");
}

TEST(ParseDeclaration, ReadsArrayMarkAfterNameOrType) {
  EXPECT_TRUE(parseDeclaration("Sum(numbers() As Integer)").parameters[0].type.is_array);
  EXPECT_TRUE(parseDeclaration("Sum(numbers As Integer())").parameters[0].type.is_array);
  EXPECT_TRUE(parseDeclaration("Sum(numbers ( ) As Integer)").parameters[0].type.is_array);
}

TEST(ParseDeclaration, ReadsKeywordsAndTypesInAnyCase) {
  const Declaration declaration = parseDeclaration("f(BYREF a aS uint32, ByVal b AS STRING) as INTEGER");
  EXPECT_TRUE(declaration.parameters[0].by_reference);
  EXPECT_EQ(declaration.parameters[0].type.type, Type::kUInt32);
  EXPECT_FALSE(declaration.parameters[1].by_reference);
  EXPECT_EQ(declaration.parameters[1].type.type, Type::kString);
  EXPECT_EQ(declaration.result->type, Type::kInteger);
}

TEST(ParseDeclaration, SkipsIrregularBlanks) {
  const Declaration declaration = parseDeclaration("  f (\tobj   As\r\nObject ,b As Double )\tAs  String ( ) ");
  EXPECT_EQ(declaration.parameters.size(), 2U);
  EXPECT_EQ(declaration.parameters[0].type.type, Type::kObject);
  EXPECT_TRUE(declaration.result->is_array);
  EXPECT_EQ(parseDeclaration("f( )").parameters.size(), 0U);
}

TEST(ParseDeclaration, ReadsEveryBuiltInType) {
  for (const char* name :
       {"Boolean", "Integer", "UInteger", "Int8",    "Int16",   "Int32",    "Int64",       "UInt8",
        "UInt16",  "UInt32",  "UInt64",   "Single",  "Double",  "Currency", "Color",       "String",
        "Text",    "Object",  "Ptr",      "CString", "WString", "PString",  "CFStringRef", "OSType"}) {
    const Declaration declaration = parseDeclaration("f() As " + std::string(name));
    EXPECT_STREQ(factsOf(declaration.result->type).name, name);
  }
}

TEST(ParseDeclaration, ReadsOtherTypesAsClasses) {
  const Declaration declaration = parseDeclaration("f(w As Xml.Node)");
  EXPECT_EQ(declaration.parameters[0].type.type, Type::kObject);
  EXPECT_EQ(declaration.parameters[0].type.name, "Xml.Node");
}

TEST(ParseDeclaration, ReadsNamesWithDigitsUnderscoresAndLettersBeyondAscii) {
  const Declaration declaration = parseDeclaration("größe_2(äöü1 As Integer)");
  EXPECT_EQ(declaration.name, "größe_2");
  EXPECT_EQ(declaration.parameters[0].name, "äöü1");
}

TEST(ParseDeclaration, ReadsParametersNamedLikeTypesOrWithKeywordsInside) {
  const Declaration declaration = parseDeclaration("f(string As Integer, assign As Integer, byrefs As Integer)");
  EXPECT_EQ(declaration.parameters[0].name, "string");
  EXPECT_EQ(declaration.parameters[1].name, "assign");
  EXPECT_EQ(declaration.parameters[2].name, "byrefs");
}

TEST(Signature, IgnoresParameterNamesAndCase) {
  EXPECT_EQ(parseDeclaration("Found( name as String, path as String )").signature(),
            parseDeclaration("FOUND(a As STRING,b As string)").signature());
  EXPECT_NE(parseDeclaration("f(a As String)").signature(), parseDeclaration("f(byref a As String)").signature());
  EXPECT_NE(parseDeclaration("f(a As String)").signature(), parseDeclaration("f(a As String())").signature());
  EXPECT_NE(parseDeclaration("f()").signature(), parseDeclaration("f() As Integer").signature());
  EXPECT_NE(parseDeclaration("f(a As Single)").signature(), parseDeclaration("f(a As Double)").signature());
}

TEST(ParseDeclaration, StatesWhatItExpectedAndWhere) {
  EXPECT_EQ(errorOf(""), "declaration \"\": expected the method's name at column 1, where it ends");
  EXPECT_EQ(errorOf("f"), "declaration \"f\": expected \"(\" after the method's name at column 2, where it ends");
  EXPECT_EQ(errorOf("f(a Integer)"),
            "declaration \"f(a Integer)\": expected \"As\" after the parameter's name at column 5, where \"I\" stands");
  EXPECT_THAT(errorOf("f(a As)"), HasSubstr("expected a type's name at column 7"));
  EXPECT_THAT(errorOf("f(a As Integer"), HasSubstr("expected \",\" or \")\" after a parameter at column 15"));
  EXPECT_THAT(errorOf("f(a As Integer,)"), HasSubstr("expected a parameter's name at column 16"));
  EXPECT_THAT(errorOf("f(,)"), HasSubstr("expected a parameter's name at column 3"));
  EXPECT_THAT(errorOf("f(byref As Integer)"), HasSubstr("expected a parameter's name at column 9"));
  EXPECT_THAT(errorOf("f() Integer"), HasSubstr("expected \"As\" and the result's type, or the end at column 5"));
  EXPECT_THAT(errorOf("f() As String("), HasSubstr("expected \")\" to close an array's \"(\" at column 15"));
  EXPECT_THAT(errorOf("f() As String() x"), HasSubstr("expected the end at column 17"));
  EXPECT_THAT(errorOf("f() As A."), HasSubstr("expected a name after \".\" at column 10"));
  EXPECT_THAT(errorOf("2f()"), HasSubstr("expected the method's name at column 1"));
  EXPECT_THAT(errorOf("As()"), HasSubstr("expected the method's name at column 1"));
}

TEST(ParseDeclaration, EscapesTheDeclarationInErrors) {
  EXPECT_EQ(errorOf("f(\r\n"), "declaration \"f(\\r\\n\": expected a parameter's name at column 5, where it ends");
  EXPECT_EQ(errorOf("f()\x1B"),
            "declaration \"f()\\x1b\": expected \"As\" and the result's type, or the end at column 4, where \"\\x1b\" "
            "stands");
  EXPECT_EQ(errorOf(std::string_view("\0\xE2\x80\xAE", 4)),
            "declaration \"\\x00\\u202e\": expected the method's name at column 1, where \"\\x00\" stands");
}

}  // namespace
}  // namespace devhost
