// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Values/NSError.h"

namespace rvf {

/// The text as one value of a URL query: every byte of its UTF-8 but ASCII letters, digits and
/// "-_.~" becomes "%" and two upper-case hexadecimal digits, so "a b&c" becomes "a%20b%26c".
/// Absent for ill-formed UTF-8, which has no escaped form.
RVF_EXPORT std::optional<std::string> RVF_stringByEscapingForURLArgument(std::string_view text);

/// The text with every percent escape replaced by the byte that it stands for; "+" is no blank.
/// Absent if a "%" is not followed by two hexadecimal digits or the result is ill-formed UTF-8.
RVF_EXPORT std::optional<std::string> RVF_stringByDecodingURLArguments(std::string_view text);

/// Reads a card's expiry date as a person types it: "MMYY", "MM/YY", "MM/YYYY", and any text with
/// one "/" between two numbers. Blanks and other marks around the year are passed over; a year of
/// one or two digits is one of the current century (Gregorian, in the default time zone).
///
///     std::int32_t month = 0, year = 0;
///     getExpiryMonth("12/25", &month, &year);   // true, 12 and 2025
///
/// False with an error of `RVFErrorDomain` (303 format, 304 month, 305 year) whose description and
/// recovery suggestion are for the user. The month, and then the year, are stored as soon as they
/// are read, also if they are refused; the year as it was typed.
///
/// An absent `month` or `andExpiryYear` is a reported assertion, "month ptr is null" or "year ptr
/// is null"; under a handler that returns, the result is false.
RVF_EXPORT bool getExpiryMonth(std::string_view text, std::int32_t* month,
                               std::int32_t* andExpiryYear, Ref<NSError>* error = nullptr);

}  // namespace rvf
