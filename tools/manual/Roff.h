// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace rvf::tool {

/// Text of a manual page as man(7) reads it. Nothing in it is taken for a request or an escape, and
/// what programs take letter for letter, such as "-" and "'", is printed as it stands.
std::string roff(std::string_view text);
/// The same in bold, as what is typed, and in italics, as what is replaced.
std::string bold(std::string_view text);
std::string italic(std::string_view text);
/// A paragraph with a term before it.
std::string taggedParagraph(const std::string& roffTerm, const std::string& roffText);

}  // namespace rvf::tool
