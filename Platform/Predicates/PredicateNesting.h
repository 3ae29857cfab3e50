// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>

namespace rvf {

/// How deep parentheses, NOTs and braces may nest in a format text. People stay below ten; a text
/// from elsewhere must not exhaust the stack.
inline constexpr std::size_t kDeepestFormat = 250;

/// How deep predicates and aggregates may nest, however they were made, because evaluation,
/// printing and destruction go down them by recursion. Each level of a format makes up to two, an
/// OR over an AND.
inline constexpr std::size_t kDeepestPredicate = 1000;

/// The depth of a node above its deepest child. Raises `NSInvalidArgumentException` where it is
/// too large.
std::size_t nestingAbove(std::size_t deepestChild);

}  // namespace rvf
