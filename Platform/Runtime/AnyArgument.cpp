// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/AnyArgument.h"

#include <cxxabi.h>

#include <cstdlib>
#include <optional>

#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/Runtime.h"

namespace rvf {
namespace {

std::string readableName(const std::type_info& type) {
  const std::unique_ptr<char, decltype(&std::free)> name(
      abi::__cxa_demangle(type.name(), nullptr, nullptr, nullptr), &std::free);
  return name ? name.get() : type.name();
}

std::string methodText(const NSObject* receiver, SEL selector) {
  return "-[" + std::string(class_getName(object_getClass(receiver))) + " " +
         NSStringFromSelector(selector) + "]";
}

}  // namespace

void raiseArgumentMismatch(const std::type_info& found, const std::string& wanted) {
  NSException::raise(NSInvalidArgumentException,
                     "value of type " + readableName(found) + " where " + wanted + " is expected");
}

void raiseArgumentMismatch(const NSObject& found, Class wanted) {
  NSException::raise(NSInvalidArgumentException,
                     "value of class " + std::string(class_getName(found.isa())) + " where " +
                         std::string(class_getName(wanted)) + " is expected");
}

void raiseMismatchInMessage(const NSObject& receiver, SEL selector, MessagePart part,
                            const NSException& mismatch) {
  const std::string verb = part == MessagePart::argument ? " got a " : " answers a ";
  NSException::raise(mismatch.name(), methodText(&receiver, selector) + verb + mismatch.reason());
}

void raiseArgumentCountMismatch(const NSObject* receiver, SEL selector, std::size_t found,
                                std::size_t wanted) {
  NSException::raise(NSInvalidArgumentException,
                     methodText(receiver, selector) + " takes " + std::to_string(wanted) +
                         (wanted == 1 ? " argument, not " : " arguments, not ") +
                         std::to_string(found));
}

const std::string* textFromAny(const std::any& value) {
  if (!value.has_value()) return nullptr;
  if (const auto* text = std::any_cast<std::string>(&value)) return text;
  if (const auto* text = std::any_cast<std::optional<std::string>>(&value)) {
    return *text ? &**text : nullptr;
  }
  const id* object = std::any_cast<id>(&value);
  if (object && !*object) return nullptr;
  if (!object) raiseArgumentMismatch(value.type(), "text");
  const std::string* text = textOfObject(**object);
  if (!text) raiseArgumentMismatch(**object, objc_getClass("NSString"));
  return text;
}

std::vector<std::byte> recordBytesFromAny(const std::any& value, const std::type_info& type,
                                          std::size_t size, std::string_view encoding) {
  const auto* record = std::any_cast<RecordValue>(&value);
  if (record && record->type && *record->type == type) return record->bytes;
  const id* object = std::any_cast<id>(&value);
  const RecordValue boxed = object && *object         ? recordOfObject(**object)
                            : record && !record->type ? *record
                                                      : RecordValue();
  const bool isSame = boxed.bytes.size() == size && boxed.encoding == encoding;
  if (isSame) return boxed.bytes;
  if (object && !*object) return std::vector<std::byte>(size);
  raiseArgumentMismatch(record && record->type ? *record->type : value.type(),
                        std::string(encoding));
}

id objectFromAny(const std::any& value) {
  if (const id* object = std::any_cast<id>(&value)) return *object;
  if (value.has_value() && value.type() != typeid(std::string) &&
      value.type() != typeid(std::optional<std::string>)) {
    raiseArgumentMismatch(value.type(), "@");
  }
  const std::string* text = textFromAny(value);
  return text ? objectOfText(*text) : nullptr;
}

}  // namespace rvf
