// SPDX-License-Identifier: Apache-2.0
#include "Platform/Values/NSAttributedString.h"

#include <functional>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSCopying.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Text/Text.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSAttributedString::classObject);

std::string presentText(std::optional<std::string_view> text) {
  if (!text) NSException::raise(NSInvalidArgumentException, "attributed text of absent text");
  return std::string(*text);
}

Ref<NSDictionary> immutable(const Ref<NSDictionary>& attributes) {
  if (!attributes) return NSDictionary::dictionary();
  return std::static_pointer_cast<NSDictionary>(copyOfObject(attributes));
}

}  // namespace

NSAttributedString::NSAttributedString(std::optional<std::string_view> text,
                                       const Ref<NSDictionary>& attributes)
    : text_(presentText(text)), attributes_(immutable(attributes)) {}

Ref<NSAttributedString> NSAttributedString::attributedStringWithString(
    std::optional<std::string_view> text, const Ref<NSDictionary>& attributes) {
  return std::make_shared<NSAttributedString>(text, attributes);
}

Class NSAttributedString::classObject() {
  static const Class kClass =
      ClassBuilder<NSAttributedString>("NSAttributedString", NSObject::classObject())
          .method<&NSAttributedString::string>("string")
          .method<&NSAttributedString::length>("length")
          .method("copy", immutableCopyImplementation())
          .conformsTo("NSCopying")
          .registered();
  return kClass;
}

Class NSAttributedString::isa() const {
  return classObject();
}

std::size_t NSAttributedString::length() const {
  return utf16Length(text_);
}

Ref<NSDictionary> NSAttributedString::attributesAtIndex(std::size_t index) const {
  const std::size_t count = length();
  if (index >= count) {
    NSException::raise(NSRangeException, "index " + std::to_string(index) + " beyond length " +
                                             std::to_string(count));
  }
  return attributes_;
}

bool NSAttributedString::isEqual(const NSObject* other) const {
  const auto* text = dynamic_cast<const NSAttributedString*>(other);
  return text && text_ == text->text_ && attributes_->isEqual(text->attributes_.get());
}

std::size_t NSAttributedString::hash() const {
  return std::hash<std::string>()(text_);
}

}  // namespace rvf
