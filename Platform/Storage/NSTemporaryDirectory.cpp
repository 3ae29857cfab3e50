// SPDX-License-Identifier: Apache-2.0
#include "Platform/Storage/NSTemporaryDirectory.h"

#include <stdlib.h>

namespace rvf {

std::string NSTemporaryDirectory() {
  const char* const folder = getenv("TMPDIR");  // NOLINT(concurrency-mt-unsafe): see the header
  return folder && *folder ? folder : "/tmp";
}

}  // namespace rvf
