// SPDX-License-Identifier: Apache-2.0
#include "Platform/Values/NSString.h"

#include <functional>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSCopying.h"
#include "Platform/Text/CaseMapping.h"
#include "Platform/Text/Text.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSString::classObject);

}  // namespace

Class NSString::classObject() {
  static const Class kClass = ClassBuilder<NSString>("NSString", NSObject::classObject())
                                  .method<&NSString::length>("length")
                                  .method<&NSString::boolValue>("boolValue")
                                  .method<&NSString::uppercaseString>("uppercaseString")
                                  .method<&NSString::integerValue>("integerValue")
                                  .method<&NSString::floatValue>("floatValue")
                                  .method<&NSString::doubleValue>("doubleValue")
                                  .method("copy", immutableCopyImplementation())
                                  .conformsTo("NSCopying")
                                  .registered();
  return kClass;
}

Class NSString::isa() const {
  return classObject();
}

Ref<NSString> NSString::stringWithString(std::string_view text) {
  return std::make_shared<NSString>(std::string(text));
}

Ref<NSString> NSString::stringWithUTF8Bytes(std::string_view bytes) {
  return isValidUtf8(bytes) ? stringWithString(bytes) : nullptr;
}

std::size_t NSString::length() const {
  return utf16Length(text_);
}

long NSString::integerValue() const {
  return integerValueOfText(text_);
}

float NSString::floatValue() const {
  return static_cast<float>(doubleValueOfText(text_));
}

double NSString::doubleValue() const {
  return doubleValueOfText(text_);
}

int NSString::compare(const NSString& other) const {
  return compareUtf16(text_, other.text_);
}

bool NSString::boolValue() const noexcept {
  return boolValueOfText(text_);
}

std::string NSString::uppercaseString() const {
  return uppercaseText(text_);
}

bool NSString::isEqual(const NSObject* other) const {
  const auto* string = dynamic_cast<const NSString*>(other);
  return string && text_ == string->text_;
}

std::size_t NSString::hash() const {
  return std::hash<std::string>()(text_);
}

Ref<NSString> box(std::string_view text) {
  return NSString::stringWithString(text);
}
Ref<NSString> box(const std::string& text) {
  return box(std::string_view(text));
}
Ref<NSString> box(const char* text) {
  return text ? box(std::string_view(text)) : nullptr;
}
Ref<NSString> box(const std::optional<std::string>& text) {
  return text ? box(std::string_view(*text)) : nullptr;
}

id objectOfText(const std::string& text) {
  return box(text);
}

const std::string* textOfObject(const NSObject& object) noexcept {
  const auto* string = dynamic_cast<const NSString*>(&object);
  return string ? &string->string() : nullptr;
}

std::optional<std::string> unboxText(const id& object) {
  const std::string* text = object ? textOfObject(*object) : nullptr;
  return text ? std::optional(*text) : std::nullopt;
}

}  // namespace rvf
