// SPDX-License-Identifier: Apache-2.0
#include "Platform/Observation/ValueBoxing.h"

#include <utility>

#include "Platform/Runtime/AnyArgument.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

constexpr std::string_view kScalarCodes = "cCsSiIqQfdB{(";

/// A block of any signature. Nothing is to be seen of it but that it is one; setting a key hands it
/// on.
class OpaqueBlock final : public NSObject {
 public:
  explicit OpaqueBlock(std::any block) : block_(std::move(block)) {}

  static Class classObject() {
    static const Class kClass =
        ClassBuilder<OpaqueBlock>("KeyValueBlock", NSObject::classObject()).registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

  const std::any& block() const noexcept { return block_; }

 private:
  const std::any block_;
};

id objectOfBlock(const std::any& value) {
  return value.has_value() ? std::make_shared<OpaqueBlock>(value) : nullptr;
}

std::any blockOfObject(const NSObject& object) {
  const auto* block = dynamic_cast<const OpaqueBlock*>(&object);
  if (!block) raiseArgumentMismatch(object, OpaqueBlock::classObject());
  return block->block();
}

template <class T>
id boxed(const std::any& value) {
  return box(anyTo<T>(value));
}

/// The number that an object reads as; absent if it has no such reading.
Ref<NSNumber> numberOf(const id& object, char typeCode) {
  if (auto number = std::dynamic_pointer_cast<NSNumber>(object)) return number;
  const auto* text = dynamic_cast<const NSString*>(object.get());
  if (!text) return nullptr;
  if (typeCode == 'c' || typeCode == 'B') return box(text->boolValue());
  if (typeCode == 'f' || typeCode == 'd') return box(text->doubleValue());
  return box(text->integerValue());
}

/// The message that would ask an object for its reading.
SEL readingFor(char typeCode) {
  switch (typeCode) {
    case 'c':
      return SEL("charValue");
    case 'C':
      return SEL("unsignedCharValue");
    case 's':
      return SEL("shortValue");
    case 'S':
      return SEL("unsignedShortValue");
    case 'i':
      return SEL("intValue");
    case 'I':
      return SEL("unsignedIntValue");
    case 'q':
      return SEL("longLongValue");
    case 'Q':
      return SEL("unsignedLongLongValue");
    case 'f':
      return SEL("floatValue");
    case 'B':
      return SEL("boolValue");
    default:
      return SEL("doubleValue");
  }
}

}  // namespace

bool isBoxableEncoding(std::string_view encoding) noexcept {
  return encoding == "@" || encoding == "@?" || encoding.starts_with("@\"") ||
         isScalarEncoding(encoding);
}

char boxingCode(std::string_view encoding) noexcept {
  return encoding == "@?" ? '?' : encoding.front();
}

bool isScalarEncoding(std::string_view encoding) noexcept {
  return !encoding.empty() && kScalarCodes.find(encoding.front()) != std::string_view::npos;
}

id objectOfValue(const std::any& value, char typeCode) {
  switch (typeCode) {
    case 'c':
      return boxed<signed char>(value);
    case 'C':
      return boxed<unsigned char>(value);
    case 's':
      return boxed<short>(value);
    case 'S':
      return boxed<unsigned short>(value);
    case 'i':
      return boxed<int>(value);
    case 'I':
      return boxed<unsigned>(value);
    case 'q':
      return boxed<long>(value);
    case 'Q':
      return boxed<unsigned long>(value);
    case 'f':
      return boxed<float>(value);
    case 'd':
      return boxed<double>(value);
    case 'B':
      return boxed<bool>(value);
    case '{':
    case '(':
      return objectOfRecord(anyTo<RecordValue>(value));
    case '?':
      return objectOfBlock(value);
    default:
      return objectFromAny(value);
  }
}

std::any valueOfObject(const id& object, char typeCode) {
  if (typeCode == '@') return object;
  if (typeCode == '?') return blockOfObject(*object);
  if (typeCode == '{' || typeCode == '(') return recordOfObject(*object);
  const Ref<NSNumber> number = numberOf(object, typeCode);
  if (!number) object->doesNotRecognizeSelector(readingFor(typeCode));
  switch (typeCode) {
    case 'c':
      return toAny(number->charValue());
    case 'C':
      return toAny(number->unsignedCharValue());
    case 's':
      return toAny(number->shortValue());
    case 'S':
      return toAny(number->unsignedShortValue());
    case 'i':
      return toAny(number->intValue());
    case 'I':
      return toAny(number->unsignedIntValue());
    case 'q':
      return toAny(number->longValue());
    case 'Q':
      return toAny(number->unsignedLongValue());
    case 'f':
      return toAny(number->floatValue());
    case 'B':
      return toAny(number->boolValue());
    default:
      return toAny(number->doubleValue());
  }
}

}  // namespace rvf
