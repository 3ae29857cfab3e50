// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/RVFPropertyHelpers.h"

#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "Platform/Runtime/ClassBuilder.h"

namespace rvf {
namespace {

RVFPropertyInfo parsed(std::string_view name, std::string_view attributes) {
  return RVFParsePropertyAttributes({std::string(name), std::string(attributes)});
}

Class newClass(const std::string& name, const std::vector<Property>& properties,
               Class superclass = NSObject::classObject()) {
  ClassBuilder<NSObject> builder("PropertyHelpersTest" + name, superclass);
  for (const Property& property : properties)
    builder.property(property.name, property.attributes);
  return builder.registered();
}

/// The flags of a record as the letters that set them, "a" for assign.
std::string flagsOf(const RVFPropertyInfo& info) {
  std::string letters;
  const auto add = [&](bool isSet, char letter) {
    if (isSet) letters += letter;
  };
  add(info.readonly, 'R');
  add(info.copy, 'C');
  add(info.retain, '&');
  add(info.nonatomic, 'N');
  add(info.dynamic, 'D');
  add(info.weak, 'W');
  add(info.collectable, 'P');
  add(info.assign, 'a');
  return letters;
}

struct ParsedRow {
  std::string_view name;
  std::string_view attributes;
  std::string_view type;
  std::string_view getter;
  std::string_view setter;
  std::string_view ivar;
  std::string_view flags;
};

std::ostream& operator<<(std::ostream& stream, const ParsedRow& row) {
  return stream << row.name << ' ' << row.attributes;
}

class ParsedProperty : public ::testing::TestWithParam<ParsedRow> {};

TEST_P(ParsedProperty, HasTheValuesAndFlagsOfItsAttributes) {
  const ParsedRow& row = GetParam();
  const RVFPropertyInfo info = parsed(row.name, row.attributes);
  EXPECT_EQ(info.name, nullptr);
  EXPECT_EQ(info.type.view(), row.type);
  EXPECT_EQ(info.getter.view(), row.getter);
  EXPECT_EQ(info.setter.view(), row.setter);
  EXPECT_EQ(info.ivar.view(), row.ivar);
  EXPECT_EQ(flagsOf(info), row.flags);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ParsedProperty,
    ::testing::Values(
        ParsedRow{"title", "T@\"NSString\",C,N,V_title", "@\"NSString\"", "title",
                  "setTitle:", "_title", "CN"},
        ParsedRow{"count", "Ti,R,N", "i", "count", "", "", "RNa"},
        ParsedRow{"enabled", "Tc,GisEnabled,N", "c", "isEnabled", "setEnabled:", "", "Na"},
        ParsedRow{"owner", "T@,W", "@", "owner", "setOwner:", "", "Wa"},
        ParsedRow{"_x", "Td", "d", "_x", "set_x:", "", "a"},
        ParsedRow{"Title", "T@,&", "@", "Title", "setTitle:", "", "&"},
        ParsedRow{"x", "Ti", "i", "x", "setX:", "", "a"},
        ParsedRow{"name", "T@,R,Stake:,GanyName", "@", "anyName", "take:", "", "Ra"},
        ParsedRow{"name", "T@,G,S", "@", "name", "setName:", "", "a"},
        ParsedRow{"all", "T@,R,C,&,N,D,W,P,Vall", "@", "all", "", "all", "RC&NDWP"},
        ParsedRow{"late", "N,D,V_v,T{?=ii}", "{?=ii}", "late", "setLate:", "_v", "NDa"},
        ParsedRow{"twice", "Ti,Tq", "q", "twice", "setTwice:", "", "a"},
        ParsedRow{"bare", "", "", "bare", "setBare:", "", "a"},
        ParsedRow{"\xC3\xA9t\xC3\xA9", "T@", "@", "\xC3\xA9t\xC3\xA9", "set\xC3\xA9t\xC3\xA9:", "",
                  "a"}));

TEST(RVFPropertyHelpers, AnyValueMayHave64CharactersAndThenHasNoTerminator) {
  const std::string value(64, 'v');
  for (const char letter : std::string("TGSV")) {
    const RVFPropertyInfo info = parsed("p", letter + value + ",N");
    const RVFPropertyInfo::Text& text = letter == 'T'   ? info.type
                                        : letter == 'G' ? info.getter
                                        : letter == 'S' ? info.setter
                                                        : info.ivar;
    EXPECT_EQ(text.view(), value) << letter;
    EXPECT_EQ(text.data()[63], 'v') << letter;
  }
}

TEST(RVFPropertyHelpers, ShorterValuesAreFilledUpWithZeroBytes) {
  const RVFPropertyInfo info = parsed("p", "T" + std::string(63, 't'));
  EXPECT_EQ(info.type.data()[63], '\0');
  EXPECT_EQ(std::string(info.ivar.data(), 64), std::string(64, '\0'));
}

TEST(RVFPropertyHelpersDeath, AValueOfMoreThan64CharactersStopsTheProcess) {
  const std::string value(65, 'v');
  for (const char letter : std::string("TGSV")) {
    EXPECT_DEATH(parsed("p", letter + value),
                 "function RVFParsePropertyAttributes, file RVFoundation/RVFPropertyHelpers, "
                 "line 49")
        << letter;
  }
}

TEST(RVFPropertyHelpersDeath, AnUnknownLetterStopsTheProcess) {
  for (const std::string_view attributes : {"X", "Ti,x", "Ti,t@", "Ti,,N", "Ti,", ","}) {
    EXPECT_DEATH(parsed("p", attributes),
                 "\\(0\\), function RVFParsePropertyAttributes, file "
                 "RVFoundation/RVFPropertyHelpers, line 49")
        << attributes;
  }
}

TEST(RVFPropertyHelpers, ALongNameIsCutAt64CharactersAsGetterAndAt63AsSetter) {
  const std::string name = "n" + std::string(99, 'x');
  const RVFPropertyInfo info = parsed(name, "Ti");
  EXPECT_EQ(info.getter.view(), name.substr(0, 64));
  EXPECT_EQ(info.setter.view(), "setN" + std::string(59, 'x'));
}

TEST(RVFPropertyHelpers, TheColonOfASetterIsTheFirstToBeCut) {
  EXPECT_EQ(parsed(std::string(59, 'n'), "Ti").setter.view(), "setN" + std::string(58, 'n') + ":");
  EXPECT_EQ(parsed(std::string(60, 'n'), "Ti").setter.view(), "setN" + std::string(59, 'n'));
}

TEST(RVFPropertyHelpers, APropertyWithoutANameHasASetterThatIsOnlyTheStart) {
  EXPECT_EQ(parsed("", "Ti").setter.view(), "set:");
  EXPECT_EQ(parsed("", "Ti").getter.view(), "");
}

TEST(RVFPropertyHelpers, ARecordIsAValueOfItsOwn) {
  RVFPropertyInfo copy;
  {
    const RVFPropertyInfo info = parsed("title", "T@\"NSString\",C");
    copy = info;
  }
  EXPECT_EQ(copy.type.view(), "@\"NSString\"");
  EXPECT_TRUE(copy.copy);
}

class PropertyLookup : public ::testing::Test {
 protected:
  static Class base() {
    static const Class kClass = newClass("Base", {{"enabled", "Tc,GisEnabled,N"},
                                                  {"title", "T@\"NSString\",C,N,V_title"},
                                                  {"count", "Ti,R,N"}});
    return kClass;
  }
  static Class derived() {
    static const Class kClass = newClass(
        "Derived", {{"count", "Tq,N"}, {"first", "Ti,Gshared"}, {"second", "Td,Gshared"}}, base());
    return kClass;
  }
  /// The record that the selector finds.
  static std::optional<RVFPropertyInfo> forSelector(Class aClass, std::string_view selector) {
    RVFPropertyInfo info;
    if (!RVFPropertyInfoForSelector(aClass, SEL(selector), &info)) return std::nullopt;
    return info;
  }
  static std::optional<RVFPropertyInfo> forName(Class aClass, std::string_view name) {
    RVFPropertyInfo info;
    if (!RVFPropertyInfoForPropertyOfClass(aClass, name, &info)) return std::nullopt;
    return info;
  }
};

TEST_F(PropertyLookup, FindsAPropertyByItsGetterAndByItsSetter) {
  for (const std::string_view selector : {"isEnabled", "setEnabled:"}) {
    const auto info = forSelector(base(), selector);
    ASSERT_TRUE(info) << selector;
    EXPECT_EQ(info->name->string(), "enabled");
    EXPECT_EQ(info->getter.view(), "isEnabled");
  }
}

TEST_F(PropertyLookup, BySelectorDoesNotKnowThePropertysNameBesideAGetterOfItsOwn) {
  EXPECT_FALSE(forSelector(base(), "enabled"));
}

TEST_F(PropertyLookup, ComparesSelectorsExactly) {
  for (const std::string_view selector : {"Title", "titl", "title:", "setTitle", "settitle:"}) {
    EXPECT_FALSE(forSelector(base(), selector)) << selector;
  }
}

TEST_F(PropertyLookup, OfAReadOnlyPropertyFindsNoSetter) {
  EXPECT_FALSE(forSelector(base(), "setCount:"));
  EXPECT_TRUE(forSelector(base(), "count"));
}

TEST_F(PropertyLookup, GoesUpTheChain) {
  const auto info = forSelector(derived(), "setTitle:");
  ASSERT_TRUE(info);
  EXPECT_EQ(info->name->string(), "title");
  EXPECT_TRUE(forName(derived(), "isEnabled"));
}

TEST_F(PropertyLookup, ASubclassShadowsAnAccessorOfItsSuperclass) {
  EXPECT_EQ(forSelector(derived(), "count")->type.view(), "q");
  EXPECT_EQ(forSelector(base(), "count")->type.view(), "i");
  EXPECT_EQ(forName(derived(), "count")->type.view(), "q");
}

TEST_F(PropertyLookup, WithinAClassTheFirstInTheListWins) {
  EXPECT_EQ(forSelector(derived(), "shared")->name->string(), "first");
  EXPECT_EQ(forName(derived(), "shared")->type.view(), "i");
}

TEST_F(PropertyLookup, WithoutAMatchLeavesTheRecordUntouched) {
  RVFPropertyInfo info = parsed("kept", "Td,R");
  info.name = box("kept");
  EXPECT_FALSE(RVFPropertyInfoForSelector(derived(), SEL("nothing"), &info));
  EXPECT_FALSE(RVFPropertyInfoForPropertyOfClass(derived(), "nothing", &info));
  EXPECT_EQ(info.name->string(), "kept");
  EXPECT_EQ(info.getter.view(), "kept");
}

TEST_F(PropertyLookup, OfNoClassOrSelectorFindsNothing) {
  RVFPropertyInfo info;
  EXPECT_FALSE(RVFPropertyInfoForSelector(nullptr, SEL("count"), &info));
  EXPECT_FALSE(RVFPropertyInfoForSelector(base(), SEL(), &info));
  EXPECT_FALSE(RVFPropertyInfoForPropertyOfClass(nullptr, "count", &info));
}

TEST_F(PropertyLookup, ByNameComparesWithTheGetterOnly) {
  EXPECT_TRUE(forName(base(), "isEnabled"));
  EXPECT_FALSE(forName(base(), "enabled"));
  EXPECT_TRUE(forName(base(), "title"));
  EXPECT_FALSE(forName(base(), "setTitle:"));
}

TEST_F(PropertyLookup, ByNameLeavesTheNameAbsent) {
  EXPECT_EQ(forName(base(), "title")->name, nullptr);
}

TEST_F(PropertyLookup, ByNameEndsAtTheFirstZeroByte) {
  using namespace std::string_view_literals;
  EXPECT_TRUE(forName(base(), "title\0x"sv));
  EXPECT_FALSE(forName(base(), "titl\0e"sv));
}

TEST_F(PropertyLookup, ByNameNeedsNoRecord) {
  EXPECT_TRUE(RVFPropertyInfoForPropertyOfClass(base(), "title", nullptr));
  EXPECT_FALSE(RVFPropertyInfoForPropertyOfClass(base(), "nothing", nullptr));
}

TEST_F(PropertyLookup, SeesPropertiesThatAreAddedLater) {
  const Class aClass = newClass("Growing", {}, base());
  EXPECT_EQ(forSelector(aClass, "count")->type.view(), "i");
  EXPECT_FALSE(forSelector(aClass, "price"));
  class_addProperty(aClass, "price", "Td");
  class_addProperty(aClass, "count", "TQ");
  EXPECT_EQ(forSelector(aClass, "price")->type.view(), "d");
  EXPECT_EQ(forSelector(aClass, "count")->type.view(), "Q");
}

TEST_F(PropertyLookup, AnswersRightHoweverManyAreAskedForInTurn) {
  std::vector<Property> integers;
  std::vector<Property> doubles;
  for (int i = 0; i < 300; ++i) {
    integers.push_back({"p" + std::to_string(i), "Tq"});
    doubles.push_back({"p" + std::to_string(i), "Td"});
  }
  const Class first = newClass("ManyIntegers", integers);
  const Class second = newClass("ManyDoubles", doubles);
  for (int i = 0; i < 600; ++i) {
    const std::string selector = "p" + std::to_string(i % 300);
    ASSERT_EQ(forSelector(first, selector)->type.view(), "q");
    ASSERT_EQ(forSelector(second, selector)->type.view(), "d");
    ASSERT_EQ(forSelector(first, selector)->name->string(), selector);
  }
}

TEST_F(PropertyLookup, OfAnotherThreadSeesPropertiesThatAreAddedLater) {
  const Class aClass = newClass("GrowingElsewhere", {}, base());
  EXPECT_EQ(forSelector(aClass, "count")->type.view(), "i");
  std::thread([&] { class_addProperty(aClass, "count", "TQ"); }).join();
  EXPECT_EQ(forSelector(aClass, "count")->type.view(), "Q");
}

TEST_F(PropertyLookup, FindsLongNamesUnderTheCutAccessors) {
  const std::string name(100, 'n');
  const Class aClass = newClass("LongNames", {{name, "Ti"}});
  EXPECT_FALSE(forSelector(aClass, name));
  EXPECT_EQ(forSelector(aClass, name.substr(0, 64))->name->string(), name);
  EXPECT_EQ(forSelector(aClass, "setN" + std::string(59, 'n'))->name->string(), name);
}

TEST_F(PropertyLookup, FindsAccessorsOfExactly64Characters) {
  const std::string getter(64, 'g');
  const std::string setter = std::string(63, 's') + ":";
  const Class aClass = newClass("FullBuffers", {{"p", "Ti,G" + getter + ",S" + setter}});
  EXPECT_TRUE(forSelector(aClass, getter));
  EXPECT_TRUE(forSelector(aClass, setter));
  EXPECT_TRUE(forName(aClass, getter));
}

TEST(PropertyLookupDeath, WithoutARecordStopsTheProcess) {
  EXPECT_DEATH(RVFPropertyInfoForSelector(NSObject::classObject(), SEL("x"), nullptr),
               "\\(outInfo\\), function RVFPropertyInfoForSelector, file "
               "RVFoundation/RVFPropertyHelpers, line 73");
}

TEST(PropertyLookupDeath, ParsesEveryPropertyOnItsWay) {
  const Class aClass = newClass("Malformed", {{"bad", "Ti,Z"}, {"good", "Ti"}});
  EXPECT_DEATH(RVFPropertyInfoForPropertyOfClass(aClass, "good", nullptr), "line 49");
}

struct TypeRow {
  std::string_view type;
  std::string_view className;  // empty: none
};

std::ostream& operator<<(std::ostream& stream, const TypeRow& row) {
  return stream << row.type;
}

TEST(PropertyType, EndsAtTheFirstZeroByte) {
  using namespace std::string_view_literals;
  EXPECT_EQ(RVFGetPropertyClassFromPropertyInfoType("@\"NSObject\"\0x"sv), NSObject::classObject());
  EXPECT_EQ(RVFGetPropertyClassFromPropertyInfoType("@\"NSObject\0\""sv), nullptr);
}

class PropertyClass : public ::testing::TestWithParam<TypeRow> {};

TEST_P(PropertyClass, IsTheOneBetweenTheQuotes) {
  const Class found = RVFGetPropertyClassFromPropertyInfoType(GetParam().type);
  EXPECT_EQ(found ? class_getName(found) : "", GetParam().className);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, PropertyClass,
    ::testing::Values(
        TypeRow{"@\"NSString\"", "NSString"}, TypeRow{"@\"NSObject<NSCopying>\"", "NSObject"},
        TypeRow{"@\"NSObject<NSCopying><NSCoding>\"", "NSObject"},
        TypeRow{"@\"NSString\"tail<x>", "NSString"}, TypeRow{"@", ""}, TypeRow{"i", ""},
        TypeRow{"", ""}, TypeRow{"@\"<NSCopying>\"", ""}, TypeRow{"@\"\"", ""}, TypeRow{"@\"", ""},
        TypeRow{"@\"NSString", ""}, TypeRow{"@\"NSNoSuchClass\"", ""}, TypeRow{"@?", ""},
        TypeRow{"@ \"NSString\"", ""}, TypeRow{"\"NSString\"", ""}, TypeRow{"#\"NSString\"", ""}));

TEST(PropertyClass, OfATextThatFillsItsBufferHasNoClosingQuote) {
  const RVFPropertyInfo info = parsed("p", "T@\"" + std::string(62, 'N'));
  EXPECT_EQ(RVFGetPropertyClassFromPropertyInfoType(info.type), nullptr);
}

}  // namespace
}  // namespace rvf
