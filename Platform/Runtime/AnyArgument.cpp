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

}  // namespace

void raiseArgumentMismatch(const std::type_info& found, const std::string& wanted) {
  NSException::raise(NSInvalidArgumentException, "argument of type " + readableName(found) +
                                                     " where " + wanted + " is expected");
}

void raiseArgumentMismatch(const NSObject& found, Class wanted) {
  NSException::raise(NSInvalidArgumentException,
                     "argument of class " + std::string(class_getName(found.isa())) + " where " +
                         std::string(class_getName(wanted)) + " is expected");
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
