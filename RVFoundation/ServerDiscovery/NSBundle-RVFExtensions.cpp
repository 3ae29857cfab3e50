// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/ServerDiscovery/NSBundle-RVFExtensions.h"

namespace rvf {

id RVF_bundleVersion(const Ref<NSBundle>& bundle) {
  return bundle ? bundle->infoDictionary()->objectForKey(kCFBundleVersionKey) : nullptr;
}

}  // namespace rvf
