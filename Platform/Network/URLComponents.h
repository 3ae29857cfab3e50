// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace rvf {

/// The five parts of a URL text, as they stand in it. An absent part differs from an empty one:
/// "p?" has an empty query, "p" has none.
struct URLComponents {
  std::optional<std::string_view> scheme;
  std::optional<std::string_view> authority;
  std::string_view path;
  std::optional<std::string_view> query;
  std::optional<std::string_view> fragment;
};

/// Splits any text (RFC 3986, appendix B), in one pass. What stands before the first ":" is no
/// scheme unless it has the form of one (RFC 3986, 3.1). The parts point into the text.
URLComponents splitURL(std::string_view text) noexcept;

/// The text that a reference stands for against an absolute base (RFC 3986, 5.2 and 5.3, strict).
/// An empty reference is the base with all its parts.
std::string resolveURL(std::string_view base, std::string_view reference);

}  // namespace rvf
