// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/ClassBuilder.h"

#include <gtest/gtest.h>

#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/Messaging.h"
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

}  // namespace
}  // namespace rvf
