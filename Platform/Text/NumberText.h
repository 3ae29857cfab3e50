// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Text/FormatReader.h"

namespace rvf {

/// Numbers as printf conversions print them, but without padding to a width (C17, 7.21.6.1).

/// `%d`: the low bits of `bits` as a number of the signed type that `length` names.
std::string signedText(const FormatFlags& flags, std::optional<std::size_t> precision,
                       std::string_view length, unsigned long long bits);
/// `%u %x %X %o`, likewise of an unsigned type.
std::string unsignedText(const FormatFlags& flags, std::optional<std::size_t> precision,
                         std::string_view length, char conversion, unsigned long long bits);
/// `%e %f %g %a %E %F %G %A`.
std::string floatingText(const FormatFlags& flags, std::optional<std::size_t> precision,
                         char conversion, double value);

/// Where zeros go that fill such a text up to a width: behind its sign and "0x".
std::size_t startOfDigits(std::string_view number) noexcept;

}  // namespace rvf
