// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/ClassBuilder.h"

#include <gtest/gtest.h>

#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

// The example of docs/object-model.md, letter for letter.

class Person final : public NSObject {
 public:
  static Class classObject();
  Class isa() const override { return classObject(); }

  const std::string& name() const { return name_; }
  void setName(std::string_view name) { name_ = name; }
  long visits() const { return visits_; }

 private:
  std::string name_;
  long visits_ = 0;
};

const ClassRegistration kRegistration(&Person::classObject);

Class Person::classObject() {
  static const Class kClass = ClassBuilder<Person>("Person", NSObject::classObject())
                                  .property("name", "T@\"NSString\",C,N,V_name")
                                  .property("visits", "Tq,R,N")
                                  .ivar<&Person::name_>("_name")
                                  .method<&Person::name>("name")
                                  .method<&Person::setName>("setName:")
                                  .method<&Person::visits>("visits")
                                  .registered();
  return kClass;
}

TEST(ClassBuilder, DescribesAClassThatAnswersMessages) {
  const id person = std::make_shared<Person>();
  send(person, SEL("setName:"), box("Ada"));
  EXPECT_EQ(send<std::string>(person, SEL("name")), "Ada");
  EXPECT_EQ(send<long>(person, SEL("visits")), 0);
  EXPECT_EQ(objc_getClass("Person"), person->isa());
}

TEST(ClassBuilder, EncodesMethodsFromTheirTypes) {
  const Class person = Person::classObject();
  EXPECT_EQ(class_getMethodImplementation(person, SEL("setName:")).typeEncoding(), "v@:@");
  EXPECT_EQ(class_getMethodImplementation(person, SEL("visits")).typeEncoding(), "q@:");
}

TEST(ClassBuilder, GivesResultsThatAreReferencesAsValues) {
  const auto person = std::make_shared<Person>();
  const IMP name = class_getMethodImplementation(person->isa(), SEL("name"));
  person->setName("Ada");
  const std::string text = name.call<std::string>(*person, SEL("name"));
  person->setName("Grace");
  EXPECT_EQ(text, "Ada");
}

TEST(ClassBuilder, NamesEndAtTheirFirstZeroByte) {
  const Class named =
      ClassBuilder<NSObject>(std::string_view("ClassBuilderTest\0x", 18), NSObject::classObject())
          .property(std::string_view("size\0x", 6), "Ti")
          .ivar(std::string_view("_size\0x", 7), "i")
          .registered();
  EXPECT_EQ(class_getName(named), "ClassBuilderTest");
  EXPECT_EQ(class_copyPropertyList(named)[0].name, "size");
  EXPECT_EQ(class_copyIvarList(named)[0].name, "_size");
}

/// Notes where its argument is, and how many references there are to it while it runs.
class Looker final : public NSObject {
 public:
  static Class classObject();
  Class isa() const override { return classObject(); }

  void look(const Ref<NSString>& looked) { note(looked); }
  // NOLINTBEGIN(performance-unnecessary-value-param): takes values on purpose
  void keep(Ref<NSString> kept) { note(kept); }
  void lookAndKeep(const Ref<NSString>& looked, Ref<NSString>) { note(looked); }
  // NOLINTEND(performance-unnecessary-value-param)

  const Ref<NSString>* place = nullptr;
  const NSString* text = nullptr;
  long references = 0;

 private:
  void note(const Ref<NSString>& found) {
    place = &found;
    text = found.get();
    references = found.use_count();
  }
};

Class Looker::classObject() {
  static const Class kClass = ClassBuilder<Looker>("Looker", NSObject::classObject())
                                  .method<&Looker::look>("look:")
                                  .method<&Looker::keep>("keep:")
                                  .method<&Looker::lookAndKeep>("look:keep:")
                                  .registered();
  return kClass;
}

class ByReference : public ::testing::Test {
 protected:
  template <class... Args>
  void call(SEL selector, const Args&... arguments) {
    class_getMethodImplementation(looker_->isa(), selector)
        .callByReference<void>(*looker_, selector, arguments...);
  }

  const Ref<Looker> looker_ = std::make_shared<Looker>();
  const Ref<NSString> text_ = std::make_shared<NSString>("a");
};

TEST_F(ByReference, AMethodThatOnlyLooksGetsTheVeryArgument) {
  call(SEL("look:"), text_);
  EXPECT_EQ(looker_->place, &text_);
  EXPECT_EQ(looker_->references, 1);
}

TEST_F(ByReference, AMethodThatTakesValuesGetsItsOwn) {
  call(SEL("keep:"), text_);
  EXPECT_EQ(looker_->references, 2);
  call(SEL("look:keep:"), text_, text_);
  EXPECT_EQ(looker_->references, 3);
}

TEST_F(ByReference, OrdinaryMessagesCarryValues) {
  send(*looker_, SEL("look:"), text_);
  EXPECT_NE(looker_->place, &text_);
  EXPECT_EQ(looker_->references, 2);
}

TEST_F(ByReference, ArgumentsOfAnotherTypeAreConverted) {
  call(SEL("look:"), id(text_));
  EXPECT_EQ(looker_->text, text_.get());
  EXPECT_THROW(call(SEL("look:"), 5), NSException);
  EXPECT_THROW(call(SEL("look:")), NSException);
}

TEST_F(ByReference, ItIsTheSameImplementation) {
  EXPECT_EQ(class_getMethodImplementation(looker_->isa(), SEL("look:")),
            memberImplementation<&Looker::look>());
  EXPECT_EQ(memberImplementation<&Looker::look>().typeEncoding(), "v@:@");
}

TEST_F(ByReference, AMessageThatNobodyAnswersRaises) {
  sendByReference(*looker_, SEL("look:"), text_);
  EXPECT_EQ(looker_->place, &text_);
  EXPECT_THROW(sendByReference(*looker_, SEL("fly:"), text_), NSException);
}

}  // namespace
}  // namespace rvf
