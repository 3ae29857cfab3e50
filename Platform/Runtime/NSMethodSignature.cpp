// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/NSMethodSignature.h"

#include <algorithm>
#include <functional>
#include <optional>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSException.h"

namespace rvf {
namespace {

std::size_t lengthOfBracketed(std::string_view types, char open, char close) {
  std::size_t depth = 0;
  for (std::size_t i = 0; i < types.size(); ++i) {
    if (types[i] == open) ++depth;
    if (types[i] == close && --depth == 0) return i + 1;
  }
  return 0;
}

/// The length of the first type in an encoding; 0 if it is not one.
std::size_t lengthOfFirstType(std::string_view types) {
  std::size_t pointers = 0;
  while (pointers < types.size() && types[pointers] == '^')
    ++pointers;
  const std::string_view rest = types.substr(pointers);
  if (rest.empty()) return 0;
  if (rest.starts_with("@?")) return pointers + 2;
  if (rest.starts_with("@\"")) {
    const std::size_t quote = rest.find('"', 2);
    return quote == std::string_view::npos ? 0 : pointers + quote + 1;
  }
  if (rest.front() == '{' || rest.front() == '(') {
    const std::size_t length =
        lengthOfBracketed(rest, rest.front(), rest.front() == '{' ? '}' : ')');
    return length ? pointers + length : 0;
  }
  constexpr std::string_view kLetters = "cCsSiIqQfdBv@#:*?";
  return kLetters.find(rest.front()) == std::string_view::npos ? 0 : pointers + 1;
}

std::optional<std::vector<std::string>> splitTypes(std::string_view types) {
  std::vector<std::string> result;
  while (!types.empty()) {
    const std::size_t length = lengthOfFirstType(types);
    if (length == 0) return std::nullopt;
    result.emplace_back(types.substr(0, length));
    types.remove_prefix(length);
  }
  return result;
}

const ClassRegistration kRegistration(&NSMethodSignature::classObject);

}  // namespace

Class NSMethodSignature::classObject() {
  static const Class kClass =
      ClassBuilder<NSMethodSignature>("NSMethodSignature", NSObject::classObject())
          .method<&NSMethodSignature::numberOfArguments>("numberOfArguments")
          .method<&NSMethodSignature::getArgumentTypeAtIndex>("getArgumentTypeAtIndex:")
          .method<&NSMethodSignature::methodReturnType>("methodReturnType")
          .registered();
  return kClass;
}

Class NSMethodSignature::isa() const {
  return classObject();
}

Ref<NSMethodSignature> NSMethodSignature::signatureWithTypes(std::string_view types) {
  auto parts = splitTypes(types);
  if (!parts || parts->size() < 3 || (*parts)[1] != "@" || (*parts)[2] != ":") return nullptr;
  if (std::find(parts->begin() + 1, parts->end(), "v") != parts->end()) return nullptr;
  auto signature = std::make_shared<NSMethodSignature>();
  signature->returnType_ = parts->front();
  signature->argumentTypes_.assign(parts->begin() + 1, parts->end());
  return signature;
}

const std::string& NSMethodSignature::getArgumentTypeAtIndex(std::size_t index) const {
  if (index >= argumentTypes_.size()) {
    NSException::raise(NSInvalidArgumentException,
                       "argument index " + std::to_string(index) + " of a signature with " +
                           std::to_string(argumentTypes_.size()) + " arguments");
  }
  return argumentTypes_[index];
}

bool NSMethodSignature::isEqual(const NSObject* other) const {
  const auto* signature = dynamic_cast<const NSMethodSignature*>(other);
  return signature && returnType_ == signature->returnType_ &&
         argumentTypes_ == signature->argumentTypes_;
}

std::size_t NSMethodSignature::hash() const {
  return std::hash<std::string>()(returnType_) ^ argumentTypes_.size();
}

}  // namespace rvf
