// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/CardReading/RVFEncryptedTrackData.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/Runtime.h"

namespace rvf {
namespace {

using testing::ElementsAre;
using OptionalText = std::optional<std::string>;

TEST(RVFEncryptedTrackData, HoldsNothingAtFirst) {
  const auto record = std::make_shared<RVFEncryptedTrackData>();
  EXPECT_EQ(record->trackData(), std::nullopt);
  EXPECT_EQ(record->dataBlock(), std::nullopt);
  EXPECT_EQ(record->statusBlock(), std::nullopt);
  EXPECT_EQ(record->keySerial(), std::nullopt);
}

TEST(RVFEncryptedTrackData, KeepsCopiesOfItsTexts) {
  const auto record = std::make_shared<RVFEncryptedTrackData>();
  std::string text = "FFFF";
  record->setTrackData(text);
  record->setDataBlock("02");
  record->setStatusBlock("");
  record->setKeySerial("62994900000");
  text = "0000";
  EXPECT_EQ(record->trackData(), "FFFF");
  EXPECT_EQ(record->dataBlock(), "02");
  EXPECT_EQ(record->statusBlock(), "");
  EXPECT_EQ(record->keySerial(), "62994900000");
  record->setTrackData(std::nullopt);
  EXPECT_EQ(record->trackData(), std::nullopt);
}

TEST(RVFEncryptedTrackData, DeclaresItsPropertiesInOrder) {
  std::vector<std::string> names;
  for (const Property& property : class_copyPropertyList(objc_getClass("RVFEncryptedTrackData"))) {
    names.push_back(property.name);
    EXPECT_EQ(property.attributes, "T@\"NSString\",C,N,V_" + property.name);
  }
  EXPECT_THAT(names, ElementsAre("trackData", "dataBlock", "statusBlock", "keySerial"));
}

TEST(RVFEncryptedTrackData, AnswersMessages) {
  const auto record = std::make_shared<RVFEncryptedTrackData>();
  for (const std::string name : {"TrackData", "DataBlock", "StatusBlock", "KeySerial"}) {
    const std::string getter = static_cast<char>(name[0] | 0x20) + name.substr(1);
    EXPECT_EQ(send<OptionalText>(record, SEL(getter)), std::nullopt) << name;
    send(record, SEL("set" + name + ":"), OptionalText("text of " + name));
    EXPECT_EQ(send<OptionalText>(record, SEL(getter)), "text of " + name);
    send(record, SEL("set" + name + ":"), OptionalText());
    EXPECT_EQ(send<OptionalText>(record, SEL(getter)), std::nullopt) << name;
  }
}

TEST(RVFEncryptedTrackData, DescribesItselfWithoutItsTexts) {
  const auto record = std::make_shared<RVFEncryptedTrackData>();
  record->setTrackData("FFFF0123");
  EXPECT_EQ(record->description().find("FFFF0123"), std::string::npos);
}

}  // namespace
}  // namespace rvf
