// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace rvf {

/// The pattern with every character quoted that the number library would take for more than itself,
/// such as "%" and "+", but digits, separators, "-" and "¤".
std::string quotedNumberPattern(std::string_view pattern);

/// Whether a quotation in the pattern has no end.
bool hasOpenQuote(std::string_view pattern);

/// Whether the pattern has a currency sign outside quotes.
bool hasCurrencySign(std::string_view pattern);

}  // namespace rvf
