// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Text/NSMutableString-RVFExtensions.h"

namespace rvf {

void appendNewLineIfNeeded(std::string& text) {
  if (!text.empty() && !text.ends_with('\n')) text += '\n';
}

}  // namespace rvf
