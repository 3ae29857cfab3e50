// SPDX-License-Identifier: Apache-2.0
#include "Platform/Storage/PropertyListError.h"

#include "Platform/Values/NSString.h"

namespace rvf {

Ref<NSError> propertyListError(long code, std::string_view problem) {
  return NSError::errorWithDomain(
      NSCocoaErrorDomain, code,
      NSDictionary::dictionaryWithEntries({{"NSDebugDescription", box(problem)}}));
}

}  // namespace rvf
