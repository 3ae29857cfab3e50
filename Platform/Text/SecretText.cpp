// SPDX-License-Identifier: Apache-2.0
#include "Platform/Text/SecretText.h"

#include <string.h>

namespace rvf {

void wipeMemory(void* bytes, std::size_t size) noexcept {
  if (size > 0) explicit_bzero(bytes, size);
}

void wipeText(std::string& text) noexcept {
  wipeMemory(text.data(), text.capacity());
  text.clear();
}

SecretText::SecretText(std::optional<std::string_view> text) {
  if (!text) return;
  bytes_ = {std::allocator<char>().allocate(text->size()), Wiper(text->size())};
  text->copy(bytes_.get(), text->size());
}

}  // namespace rvf
