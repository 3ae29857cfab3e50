// SPDX-License-Identifier: Apache-2.0
#include "Platform/Predicates/PredicateText.h"

#include "Platform/Predicates/OperatorNames.h"
#include "Platform/Predicates/ValueKinds.h"

namespace rvf {
namespace {

template <class Objects>
std::string textInBraces(const Objects& objects) {
  std::string text = "{";
  for (const id& object : objects) {
    if (text.size() > 1) text += ", ";
    text += textOfConstant(object.get());
  }
  return text + "}";
}

}  // namespace

std::string quotedText(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return quoted + '"';
}

std::string textOfKeyPath(std::string_view keyPath) {
  const bool isNumber = !keyPath.empty() && keyPath.front() >= '0' && keyPath.front() <= '9';
  const bool isAmbiguous = isNumber || isReservedWord(keyPath) || startsWithSelf(keyPath);
  return std::string(isAmbiguous ? kSelfPrefix : "") + std::string(keyPath);
}

std::string textOfConstant(const NSObject* value) {
  value = presentValue(value);
  if (!value) return "nil";
  if (const NSString* text = asText(value)) return quotedText(text->string());
  if (const auto* array = dynamic_cast<const NSArray*>(value))
    return textInBraces(array->objects());
  if (const auto* set = dynamic_cast<const NSSet*>(value)) return textInBraces(*set);
  return value->description();
}

}  // namespace rvf
