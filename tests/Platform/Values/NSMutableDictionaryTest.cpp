// SPDX-License-Identifier: Apache-2.0
#include "Platform/Values/NSMutableDictionary.h"

#include <gtest/gtest.h>

#include <functional>

#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

class MutableDictionary : public ::testing::Test {
 protected:
  MutableDictionary() {
    dictionary_->setObject(box(1), "a");
    dictionary_->setObject(box(2), box("b"));
  }
  const Ref<NSMutableDictionary> dictionary_ = NSMutableDictionary::dictionary();
};

/// Sets an entry when it is destroyed.
class Leaver final : public NSObject {
 public:
  explicit Leaver(NSMutableDictionary& dictionary) : dictionary_(dictionary) {}
  ~Leaver() override { dictionary_.setObject(box(true), "left"); }

 private:
  NSMutableDictionary& dictionary_;
};

TEST_F(MutableDictionary, SetsReplacesAndRemoves) {
  dictionary_->setObject(box(3), "a");
  dictionary_->removeObjectForKey("b");
  dictionary_->removeObjectForKey(box("none"));
  EXPECT_EQ(dictionary_->description(), "{a = 3;}");
  dictionary_->removeObjectForKey(box("a"));
  EXPECT_EQ(dictionary_->count(), 0U);
}

TEST_F(MutableDictionary, RaisesForAnAbsentKeyOrObject) {
  EXPECT_THROW(dictionary_->setObject(nullptr, "a"), NSException);
  EXPECT_THROW(dictionary_->setObject(box(1), id()), NSException);
  EXPECT_EQ(dictionary_->description(), "{a = 1; b = 2;}");
}

TEST_F(MutableDictionary, RaisesWhenItIsChangedWhileItIsWalked) {
  const std::function<void()> changes[] = {
      [this] { dictionary_->setObject(box(5), "new"); },
      [this] { dictionary_->removeObjectForKey("new"); },
      [this] { dictionary_->removeAllObjects(); },
  };
  for (const auto& change : changes) {
    const auto walk = [&] {
      for (const auto& entry : *dictionary_) {
        change();
        EXPECT_NE(entry.second, nullptr);  // outlives the change
      }
    };
    try {
      walk();
      FAIL() << "nothing was raised";
    } catch (const NSException& exception) {
      EXPECT_EQ(exception.name(), NSGenericException);
    }
  }
}

TEST_F(MutableDictionary, ReleasesObjectsWhenTheChangeIsComplete) {
  dictionary_->setObject(std::make_shared<Leaver>(*dictionary_), "a");
  dictionary_->setObject(box(1), "a");
  EXPECT_EQ(dictionary_->description(), "{a = 1; b = 2; left = 1;}");
  dictionary_->setObject(std::make_shared<Leaver>(*dictionary_), "left");
  dictionary_->removeObjectForKey("left");
  EXPECT_EQ(dictionary_->textForKey("left"), std::nullopt);
  EXPECT_NE(dictionary_->objectForKey("left"), nullptr);
}

TEST_F(MutableDictionary, CopiesItsEntriesOfThisMoment) {
  const auto copy = dictionary_->copy();
  dictionary_->removeAllObjects();
  EXPECT_EQ(copy->description(), "{a = 1; b = 2;}");
}

}  // namespace
}  // namespace rvf
