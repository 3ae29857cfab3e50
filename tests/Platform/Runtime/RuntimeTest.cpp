// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/Runtime.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"

namespace rvf {
namespace {

using namespace std::string_view_literals;
using ::testing::Contains;
using ::testing::ElementsAre;

class Shape : public NSObject {
 public:
  static Class classObject() {
    static const Class kClass = ClassBuilder<Shape>("RuntimeTestShape", NSObject::classObject())
                                    .property("name", "T@\"NSString\",C,N,V_name")
                                    .property("sides", "Ti,R")
                                    .ivar<&Shape::name_>("_name")
                                    .ivar<&Shape::sides_>("_sides")
                                    .ivar("_cache", "^v")
                                    .method<&Shape::name>("name")
                                    .method<&Shape::sides>("sides")
                                    .conformsTo("RuntimeTestDrawing")
                                    .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

  const std::string& name() const { return name_; }
  int sides() const { return sides_; }

  std::string name_ = "shape";
  int sides_ = 3;
};

class Square final : public Shape {
 public:
  static Class classObject() {
    static const Class kClass = ClassBuilder<Square>("RuntimeTestSquare", Shape::classObject())
                                    .property("side", "Td")
                                    .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }
};

/// A class of its own for tests that change one.
Class freshClass(const std::string& name) {
  return ClassBuilder<Shape>("RuntimeTestFresh" + name, Shape::classObject()).registered();
}

int four(NSObject&, SEL) {
  return 4;
}
int five(NSObject&, SEL) {
  return 5;
}

template <class List>
std::vector<std::string> namesOf(const List& list) {
  std::vector<std::string> names;
  for (const auto& item : list)
    names.push_back(item.name);
  return names;
}

TEST(Runtime, ListsThePropertiesOfExactlyOneClassAsDeclared) {
  EXPECT_THAT(namesOf(class_copyPropertyList(Shape::classObject())), ElementsAre("name", "sides"));
  EXPECT_THAT(namesOf(class_copyPropertyList(Square::classObject())), ElementsAre("side"));
  EXPECT_THAT(class_copyPropertyList(nullptr), ElementsAre());
}

TEST(Runtime, FindsAPropertyInTheNearestClassThatHasIt) {
  const Property* property = class_getProperty(Square::classObject(), "name");
  ASSERT_NE(property, nullptr);
  EXPECT_EQ(property_getName(*property), "name");
  EXPECT_EQ(property_getAttributes(*property), "T@\"NSString\",C,N,V_name");
  EXPECT_EQ(class_getProperty(Square::classObject(), "unknown"), nullptr);
}

TEST(Runtime, AddsPropertiesOfExtensionsBehindTheOwn) {
  const Class added = freshClass("Properties");
  EXPECT_TRUE(class_addProperty(added, "colour", "T@"));
  EXPECT_TRUE(class_addProperty(added, "name", "Ti"));
  EXPECT_FALSE(class_addProperty(added, "colour", "Ti"));
  EXPECT_THAT(namesOf(class_copyPropertyList(added)), ElementsAre("colour", "name"));
  EXPECT_EQ(class_getProperty(added, "name")->attributes, "Ti");
}

TEST(Runtime, ListsTheVariablesOfExactlyOneClassAsDeclared) {
  const auto ivars = class_copyIvarList(Shape::classObject());
  EXPECT_THAT(namesOf(ivars), ElementsAre("_name", "_sides", "_cache"));
  EXPECT_EQ(ivar_getTypeEncoding(ivars[0]), "@");
  EXPECT_EQ(ivar_getTypeEncoding(ivars[1]), "i");
  EXPECT_EQ(ivar_getName(ivars[2]), "_cache");
  EXPECT_THAT(class_copyIvarList(Square::classObject()), ElementsAre());
}

TEST(Runtime, ReadsAndWritesVariablesThatHaveAMember) {
  Square square;
  const Ivar* sides = class_getInstanceVariable(square.isa(), "_sides");
  ASSERT_NE(sides, nullptr);
  sides->write(square, toAny(4));
  EXPECT_EQ(anyTo<int>(sides->read(square)), 4);
  EXPECT_EQ(class_getInstanceVariable(square.isa(), "_cache")->read, nullptr);
}

TEST(Runtime, ListsMethodsWithTheNewestExtensionFirst) {
  const Class extended = freshClass("Extended");
  class_addExtension(extended, {{SEL("sides"), &four}, {SEL("corners"), &four}});
  class_addExtension(extended, {{SEL("sides"), &five}});
  std::vector<std::string> names;
  for (const Method& method : class_copyMethodList(extended))
    names.push_back(NSStringFromSelector(method_getName(method)));
  EXPECT_THAT(names, ElementsAre("sides", "sides", "corners"));
  EXPECT_EQ(method_getImplementation(class_copyMethodList(extended)[0]), IMP(&five));
  EXPECT_EQ(class_getMethodImplementation(extended, SEL("sides")), IMP(&five));
}

TEST(Runtime, AddMethodFailsOnlyIfThisVeryClassHasTheSelector) {
  const Class added = freshClass("Added");
  EXPECT_TRUE(class_addMethod(added, SEL("sides"), &four));  // overrides the inherited one
  EXPECT_FALSE(class_addMethod(added, SEL("sides"), &five));
  EXPECT_EQ(class_getMethodImplementation(added, SEL("sides")), IMP(&four));
  EXPECT_NE(class_getMethodImplementation(Shape::classObject(), SEL("sides")), IMP(&four));
}

TEST(Runtime, AddMethodRefusesNothing) {
  EXPECT_FALSE(class_addMethod(nullptr, SEL("sides"), &four));
  EXPECT_FALSE(class_addMethod(freshClass("Refusing"), SEL(), &four));
  EXPECT_FALSE(class_addMethod(freshClass("RefusingToo"), SEL("x"), IMP()));
}

TEST(Runtime, AddExtensionLeavesOutWhatIsNoMethod) {
  const Class extended = freshClass("ExtendedInPart");
  class_addExtension(extended, {{SEL(), &four}, {SEL("corners"), IMP()}, {SEL("sides"), &four}});
  const auto methods = class_copyMethodList(extended);
  ASSERT_EQ(methods.size(), 1U);
  EXPECT_EQ(method_getName(methods[0]), SEL("sides"));
  EXPECT_FALSE(class_respondsToSelector(extended, SEL("corners")));
  class_addExtension(nullptr, {{SEL("sides"), &four}});
}

TEST(Runtime, MethodsKeepTheirPlaceWhileOthersAreAdded) {
  const Class growing = freshClass("Growing");
  ASSERT_TRUE(class_addMethod(growing, SEL("sides"), &four));
  const Method* const first = growing->ownMethod(SEL("sides"));
  for (int i = 0; i < 1000; ++i)
    ASSERT_TRUE(class_addMethod(growing, SEL("grown" + std::to_string(i)), &five));
  EXPECT_EQ(growing->ownMethod(SEL("sides")), first);
  for (int i = 0; i < 1000; ++i)
    ASSERT_NE(growing->ownMethod(SEL("grown" + std::to_string(i))), nullptr) << i;
  EXPECT_EQ(growing->ownMethod(SEL("grown1000")), nullptr);
}

TEST(Runtime, RespondsToInheritedSelectorsOnly) {
  EXPECT_TRUE(class_respondsToSelector(Square::classObject(), SEL("sides")));
  EXPECT_TRUE(class_respondsToSelector(Square::classObject(), SEL("description")));
  EXPECT_FALSE(class_respondsToSelector(Square::classObject(), SEL("fly")));
  EXPECT_FALSE(class_respondsToSelector(Square::classObject(), SEL()));
  EXPECT_FALSE(class_getMethodImplementation(Square::classObject(), SEL("fly")));
}

TEST(Runtime, WalksTheChainOfClasses) {
  EXPECT_EQ(class_getSuperclass(Square::classObject()), Shape::classObject());
  EXPECT_EQ(class_getSuperclass(NSObject::classObject()), nullptr);
  EXPECT_TRUE(class_isSubclassOf(Square::classObject(), NSObject::classObject()));
  EXPECT_TRUE(class_isSubclassOf(Square::classObject(), Square::classObject()));
  EXPECT_FALSE(class_isSubclassOf(Shape::classObject(), Square::classObject()));
}

TEST(Runtime, AnswersForAbsentObjectsAndClasses) {
  EXPECT_EQ(object_getClass(nullptr), nullptr);
  EXPECT_EQ(class_getName(nullptr), "nil");
  EXPECT_EQ(class_getSuperclass(nullptr), nullptr);
  EXPECT_FALSE(class_isSubclassOf(nullptr, NSObject::classObject()));
  EXPECT_TRUE(class_copyMethodList(nullptr).empty());
  EXPECT_FALSE(class_conformsToProtocol(nullptr, objc_registerProtocol("RuntimeTestDrawing")));
  EXPECT_FALSE(class_conformsToProtocol(Shape::classObject(), nullptr));
}

TEST(Runtime, FindsClassesByName) {
  const Class shape = Shape::classObject();
  EXPECT_EQ(objc_getClass("RuntimeTestShape"), shape);
  EXPECT_EQ(objc_getClass("RuntimeTestShape\0more"sv), shape);
  EXPECT_EQ(objc_getClass("RuntimeTestUnknown"), nullptr);
  EXPECT_EQ(objc_getClass(""), nullptr);
  EXPECT_THAT(objc_copyClassList(), Contains(shape));
}

TEST(Runtime, ClassNamesAreTakenOnce) {
  freshClass("Twice");
  EXPECT_THROW(freshClass("Twice"), NSException);
  EXPECT_THROW(freshClass(std::string("Twice\0more", 10)), NSException);
}

TEST(Runtime, CountsProtocolsThatExtendOthersAndThoseOfSuperclasses) {
  const Protocol base = objc_registerProtocol("RuntimeTestBase");
  const Protocol drawing = objc_registerProtocol("RuntimeTestDrawing", {base});
  const Protocol other = objc_registerProtocol("RuntimeTestOther");
  EXPECT_TRUE(class_conformsToProtocol(Square::classObject(), drawing));
  EXPECT_TRUE(class_conformsToProtocol(Square::classObject(), base));
  EXPECT_FALSE(class_conformsToProtocol(Square::classObject(), other));
  EXPECT_TRUE(Square().conformsToProtocol("RuntimeTestBase"));
  EXPECT_FALSE(Square().conformsToProtocol("RuntimeTestUnknown"));
}

TEST(Runtime, ConformanceOfProtocolsGoesOneWay) {
  const Protocol base = objc_registerProtocol("RuntimeTestLow");
  const Protocol derived = objc_registerProtocol("RuntimeTestHigh", {base, nullptr});
  EXPECT_TRUE(protocol_conformsToProtocol(derived, base));
  EXPECT_TRUE(protocol_conformsToProtocol(base, base));
  EXPECT_FALSE(protocol_conformsToProtocol(base, derived));
  EXPECT_EQ(protocol_getName(derived), "RuntimeTestHigh");
  EXPECT_EQ(objc_getProtocol("RuntimeTestHigh"), derived);
  EXPECT_EQ(objc_getProtocol("RuntimeTestNone"), nullptr);
}

TEST(Runtime, AProtocolKnownByNameLearnsWhatItExtends) {
  const Protocol derived = objc_registerProtocol("RuntimeTestLearning");
  const Protocol base = objc_registerProtocol("RuntimeTestLearned");
  EXPECT_EQ(objc_registerProtocol("RuntimeTestLearning", {base}), derived);
  EXPECT_TRUE(protocol_conformsToProtocol(derived, base));
  EXPECT_THROW(objc_registerProtocol("RuntimeTestLearned", {derived}), NSException);
}

TEST(Runtime, ListsTheProtocolsOfExactlyOneClass) {
  const Protocol drawing = objc_registerProtocol("RuntimeTestDrawing");
  EXPECT_THAT(class_copyProtocolList(Shape::classObject()), ElementsAre(drawing));
  EXPECT_TRUE(class_copyProtocolList(Square::classObject()).empty());
}

TEST(Runtime, TakesMethodsAndPropertiesWhileOtherThreadsSend) {
  const Class changing = freshClass("Changing");
  struct Instance : Shape {
    explicit Instance(Class aClass) : class_(aClass) {}
    Class isa() const override { return class_; }
    const Class class_;
  };
  std::atomic<bool> done = false;
  std::jthread sender([&] {
    Instance instance(changing);
    while (!done) {
      EXPECT_EQ(send<std::string>(instance, SEL("name")), "shape");
      EXPECT_NE(class_getProperty(changing, "sides"), nullptr);
    }
  });
  for (int i = 0; i < 200; ++i) {
    EXPECT_TRUE(class_addMethod(changing, SEL("added" + std::to_string(i)), &four));
    EXPECT_TRUE(class_addProperty(changing, "added" + std::to_string(i), "Ti"));
  }
  done = true;
  EXPECT_EQ(class_copyMethodList(changing).size(), 200U);
}

}  // namespace
}  // namespace rvf
