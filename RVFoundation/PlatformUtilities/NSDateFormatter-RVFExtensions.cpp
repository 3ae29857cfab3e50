// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/PlatformUtilities/NSDateFormatter-RVFExtensions.h"

#include "RVFoundation/PlatformUtilities/NSLocale-RVFExtensions.h"

namespace rvf {

Ref<NSDateFormatter> NSDateFormatter_RVFExtensions::RVF_RFC3339DateFormatter() {
  auto formatter = std::make_shared<NSDateFormatter>();
  formatter->setLocale(NSLocale_RVFExtensions::RVF_POSIXLocale());
  formatter->setDateFormat("yyyy'-'MM'-'dd'T'HH':'mm':'ss'Z'");
  formatter->setTimeZone(NSTimeZone::timeZoneForSecondsFromGMT(0));
  return formatter;
}

}  // namespace rvf
