// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Platform/Runtime/NSObject.h"
#include "Platform/Runtime/Selector.h"
#include "Platform/Text/SecretText.h"

/// Accessors of secret texts as methods. Messages carry texts that they own, so what a getter
/// answers is a copy that its sender has to wipe. What a setter was given is wiped here if it was
/// sent as the `std::optional<std::string>` that the method takes; a text of another type, or in an
/// invocation, is copied on its way, and those copies are not. The C++ accessors make none.
namespace rvf {

template <class Owner, std::optional<std::string_view> (Owner::*Getter)() const noexcept>
std::optional<std::string> secretGetter(NSObject& self, SEL) {
  const auto text = (static_cast<const Owner&>(self).*Getter)();
  return text ? std::optional<std::string>(*text) : std::nullopt;
}

template <class Owner, void (Owner::*Setter)(std::optional<std::string_view>)>
void secretSetter(NSObject& self, SEL, std::optional<std::string> text) {
  (static_cast<Owner&>(self).*Setter)(text);
  if (text) wipeText(*text);
}

}  // namespace rvf
