// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/NSNetServicesError.h"

#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {

Ref<NSDictionary> failureDictionary(NSNetServicesError error) {
  return NSDictionary::dictionaryWithEntries(
      {{NSNetServicesErrorCode, box(static_cast<long>(error))},
       {NSNetServicesErrorDomain, box(NSNetServicesErrorDomain)}});
}

}  // namespace rvf
