// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/PlatformUtilities/NSMutableDictionary-RVFExtensions.h"

namespace rvf {

void RVF_setObject(const Ref<NSMutableDictionary>& dictionary, const id& object,
                   const id& forRetainedKey) {
  if (dictionary) dictionary->setObject(object, forRetainedKey);
}

}  // namespace rvf
