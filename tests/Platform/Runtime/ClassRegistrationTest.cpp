// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/ClassRegistration.h"

#include <gtest/gtest.h>

#include <array>
#include <thread>
#include <vector>

#include "Platform/Runtime/ClassBuilder.h"

namespace rvf {
namespace {

class Unused final : public NSObject {
 public:
  static Class classObject() {
    static const Class kClass =
        ClassBuilder<Unused>("ClassRegistrationTestUnused", NSObject::classObject()).registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }
};

class Late final : public NSObject {
 public:
  static Class classObject() {
    static const Class kClass =
        ClassBuilder<Late>("ClassRegistrationTestLate", NSObject::classObject()).registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }
};

const ClassRegistration kUnused(&Unused::classObject);

TEST(ClassRegistration, MakesAClassKnownBeforeItsFirstUse) {
  const Class found = objc_getClass("ClassRegistrationTestUnused");
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found, Unused::classObject());
}

TEST(ClassRegistration, MakesTheLibrarysClassesKnown) {
  for (const char* name : {"NSString", "NSMutableArray", "NSError", "NSInvocation"})
    EXPECT_NE(objc_getClass(name), nullptr) << name;
}

TEST(ClassRegistration, CountsAfterALookUpToo) {
  EXPECT_EQ(objc_getClass("ClassRegistrationTestLate"), nullptr);
  static const ClassRegistration kLate(&Late::classObject);
  EXPECT_EQ(objc_getClass("ClassRegistrationTestLate"), Late::classObject());
}

class Contended final : public NSObject {
 public:
  static Class classObject() {
    static const Class kClass =
        ClassBuilder<Contended>("ClassRegistrationTestContended", NSObject::classObject())
            .registered();
    return kClass;
  }
};

TEST(ClassRegistration, AClassIsDescribedOnceHoweverManyThreadsUseItFirst) {
  static const ClassRegistration kContended(&Contended::classObject);
  std::array<Class, 8> found{};
  {
    std::vector<std::jthread> threads;
    for (std::size_t i = 0; i < found.size(); ++i) {
      threads.emplace_back([&found, i] {
        found[i] =
            i % 2 == 0 ? Contended::classObject() : objc_getClass("ClassRegistrationTestContended");
      });
    }
  }
  for (Class aClass : found)
    EXPECT_EQ(aClass, Contended::classObject());
}

}  // namespace
}  // namespace rvf
