// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "Platform/Export.h"

namespace rvf {

/// The words of a search text: white space and line breaks are trimmed off both ends, and every
/// single one between separates, so two blanks give an empty word ("red", "", "shoe"). An all-blank
/// text is one empty word. `wordComponents` goes by the rules of a language instead.
RVF_EXPORT std::vector<std::string> RVF_wordComponents(std::string_view text);

}  // namespace rvf
