// SPDX-License-Identifier: Apache-2.0
//
// Reads any bytes as an RFC 3339 timestamp in UTC. What is read has exactly the form, its fields
// are within their limits, and the date is written the same again.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "RVFoundation/PlatformUtilities/NSDateFormatter-RVFExtensions.h"

namespace {

constexpr std::string_view kForm = "dddd-dd-ddTdd:dd:ddZ";

void require(bool condition) {
  if (!condition) std::abort();
}

/// A year beyond 9999 has more digits than the form.
bool hasForm(std::string_view text) {
  if (text.size() < kForm.size()) return false;
  const std::string_view extraDigits = text.substr(0, text.size() - kForm.size());
  if (extraDigits.find_first_not_of("0123456789") != std::string_view::npos) return false;
  text.remove_prefix(extraDigits.size());
  for (std::size_t i = 0; i < kForm.size(); ++i) {
    const bool isDigit = text[i] >= '0' && text[i] <= '9';
    if (kForm[i] == 'd' ? !isDigit : text[i] != kForm[i]) return false;
  }
  return true;
}

int number(std::string_view text, std::size_t distanceFromEnd) {
  return std::stoi(std::string(text.substr(text.size() - distanceFromEnd, 2)));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto kFormatter = rvf::NSDateFormatter_RVFExtensions::RVF_RFC3339DateFormatter();
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto date = kFormatter->dateFromString(text);
  if (!date) return 0;
  require(hasForm(text));
  require(number(text, 15) >= 1 && number(text, 15) <= 12);
  require(number(text, 12) >= 1 && number(text, 12) <= 31);
  require(number(text, 9) <= 23 && number(text, 6) <= 59 && number(text, 3) <= 59);
  require(kFormatter->stringFromDate(date) == text);
  return 0;
}
