// SPDX-License-Identifier: Apache-2.0
#include "Platform/Storage/NSCoder.h"

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSCoder::classObject);

}  // namespace

Class NSCoder::classObject() {
  static const Class kClass =
      ClassBuilder<NSCoder>("NSCoder", NSObject::classObject())
          .method<&NSCoder::encodeObject>("encodeObject:forKey:")
          .method<&NSCoder::encodeConditionalObject>("encodeConditionalObject:forKey:")
          .method<&NSCoder::encodeBool>("encodeBool:forKey:")
          .method<&NSCoder::encodeInteger>("encodeInteger:forKey:")
          .method<&NSCoder::encodeDouble>("encodeDouble:forKey:")
          .method<&NSCoder::containsValueForKey>("containsValueForKey:")
          .method<&NSCoder::decodeObjectForKey>("decodeObjectForKey:")
          .method<&NSCoder::decodeBoolForKey>("decodeBoolForKey:")
          .method<&NSCoder::decodeIntegerForKey>("decodeIntegerForKey:")
          .method<&NSCoder::decodeDoubleForKey>("decodeDoubleForKey:")
          .registered();
  return kClass;
}

Class NSCoder::isa() const {
  return classObject();
}

void NSCoder::encodeObject(const id&, std::string_view) {
  doesNotRecognizeSelector(SEL("encodeObject:forKey:"));
}

void NSCoder::encodeConditionalObject(const id&, std::string_view) {
  doesNotRecognizeSelector(SEL("encodeConditionalObject:forKey:"));
}

void NSCoder::encodeBool(bool, std::string_view) {
  doesNotRecognizeSelector(SEL("encodeBool:forKey:"));
}

void NSCoder::encodeInteger(long, std::string_view) {
  doesNotRecognizeSelector(SEL("encodeInteger:forKey:"));
}

void NSCoder::encodeDouble(double, std::string_view) {
  doesNotRecognizeSelector(SEL("encodeDouble:forKey:"));
}

bool NSCoder::containsValueForKey(std::string_view) {
  doesNotRecognizeSelector(SEL("containsValueForKey:"));
}

id NSCoder::decodeObjectForKey(std::string_view) {
  doesNotRecognizeSelector(SEL("decodeObjectForKey:"));
}

bool NSCoder::decodeBoolForKey(std::string_view) {
  doesNotRecognizeSelector(SEL("decodeBoolForKey:"));
}

long NSCoder::decodeIntegerForKey(std::string_view) {
  doesNotRecognizeSelector(SEL("decodeIntegerForKey:"));
}

double NSCoder::decodeDoubleForKey(std::string_view) {
  doesNotRecognizeSelector(SEL("decodeDoubleForKey:"));
}

}  // namespace rvf
