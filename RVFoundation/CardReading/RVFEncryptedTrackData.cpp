// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/CardReading/RVFEncryptedTrackData.h"

#include <utility>

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "RVFoundation/CardReading/SecretAccessors.h"

namespace rvf {
namespace {

using Record = RVFEncryptedTrackData;

const ClassRegistration kRegistration(&Record::classObject);

}  // namespace

Class RVFEncryptedTrackData::classObject() {
  static const Class kClass =
      ClassBuilder<Record>("RVFEncryptedTrackData", NSObject::classObject())
          .property("trackData", "T@\"NSString\",C,N,V_trackData")
          .property("dataBlock", "T@\"NSString\",C,N,V_dataBlock")
          .property("statusBlock", "T@\"NSString\",C,N,V_statusBlock")
          .property("keySerial", "T@\"NSString\",C,N,V_keySerial")
          .ivar("_trackData", "@")
          .ivar("_dataBlock", "@")
          .ivar("_statusBlock", "@")
          .ivar("_keySerial", "@")
          .method("trackData", &secretGetter<Record, &Record::trackData>)
          .method("setTrackData:", &secretSetter<Record, &Record::setTrackData>)
          .method("dataBlock", &secretGetter<Record, &Record::dataBlock>)
          .method("setDataBlock:", &secretSetter<Record, &Record::setDataBlock>)
          .method("statusBlock", &secretGetter<Record, &Record::statusBlock>)
          .method("setStatusBlock:", &secretSetter<Record, &Record::setStatusBlock>)
          .method("keySerial", &secretGetter<Record, &Record::keySerial>)
          .method("setKeySerial:", &secretSetter<Record, &Record::setKeySerial>)
          .registered();
  return kClass;
}

Class RVFEncryptedTrackData::isa() const {
  return classObject();
}

void RVFEncryptedTrackData::setTrackData(std::optional<std::string_view> trackData) {
  SecretText text(trackData);  // before an observer can change what is viewed
  announceChange(*this, "trackData", [&] { trackData_ = std::move(text); });
}

void RVFEncryptedTrackData::setDataBlock(std::optional<std::string_view> dataBlock) {
  SecretText text(dataBlock);  // before an observer can change what is viewed
  announceChange(*this, "dataBlock", [&] { dataBlock_ = std::move(text); });
}

void RVFEncryptedTrackData::setStatusBlock(std::optional<std::string_view> statusBlock) {
  SecretText text(statusBlock);  // before an observer can change what is viewed
  announceChange(*this, "statusBlock", [&] { statusBlock_ = std::move(text); });
}

void RVFEncryptedTrackData::setKeySerial(std::optional<std::string_view> keySerial) {
  SecretText text(keySerial);  // before an observer can change what is viewed
  announceChange(*this, "keySerial", [&] { keySerial_ = std::move(text); });
}

}  // namespace rvf
