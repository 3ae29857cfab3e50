// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/Pointers.h"

#include <array>
#include <charconv>
#include <cstdint>

namespace rvf {

std::string pointerText(const void* address) {
  std::array<char, 16> digits{};
  const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(),
                                          reinterpret_cast<std::uintptr_t>(address), 16);
  return "0x" + std::string(digits.data(), end);
}

}  // namespace rvf
