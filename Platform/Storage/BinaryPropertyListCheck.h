// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace rvf {

/// What is known of the bytes of a binary property list.
struct BinaryPropertyListFindings {
  std::string problem;  ///< empty if the bytes may be handed to libplist
  /// The numbers of the ASCII texts that hold U+0000, at which libplist would cut them off.
  std::vector<std::uint64_t> textsWithNul;
};

/// Goes through everything that the root of a binary property list reaches: every offset, length
/// and reference stays inside the file, keys are texts, nothing contains itself, and unfolding
/// shared objects needs no more than 256 MB or four times the file.
BinaryPropertyListFindings checkBinaryPropertyList(std::string_view bytes);

/// The same list with the given texts in UTF-16, behind which libplist looks beyond U+0000. The
/// bytes must have passed the check.
std::string withTextsInUtf16(std::string_view bytes, const std::vector<std::uint64_t>& texts);

}  // namespace rvf
