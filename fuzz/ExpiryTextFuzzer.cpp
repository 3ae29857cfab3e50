// SPDX-License-Identifier: Apache-2.0
//
// Reads any bytes as a typed expiry date: a month and a year within their limits, or an error with
// its texts and the outputs as far as they were read.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "RVFoundation/CoreServices/RVFErrors.h"
#include "RVFoundation/Text/NSString-RVFExtensions.h"

namespace {

constexpr std::int32_t kUntouched = -7;

void require(bool condition) {
  if (!condition) std::abort();
}

void requireError(const rvf::NSError& error, std::int32_t month, std::int32_t year) {
  const bool isMonthGood = month >= 1 && month <= 12;
  require(error.domain() == rvf::RVFErrorDomain);
  require(!error.localizedDescription().empty() && error.localizedRecoverySuggestion());
  switch (error.code()) {
    case rvf::RVFExpiryDateFormatError:
      return require(month == kUntouched && year == kUntouched);
    case rvf::RVFExpiryMonthOutOfRangeError:
      return require(!isMonthGood && year == kUntouched);
    case rvf::RVFExpiryYearOutOfRangeError:
      return require(isMonthGood && (year < 2000 || year >= 10000));
    default:
      std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  std::int32_t month = kUntouched;
  std::int32_t year = kUntouched;
  rvf::Ref<rvf::NSError> error;
  if (rvf::getExpiryMonth(text, &month, &year, &error)) {
    require(!error && month >= 1 && month <= 12 && year >= 2000 && year <= 9999);
  } else {
    require(error != nullptr);
    requireError(*error, month, year);
  }
  return 0;
}
