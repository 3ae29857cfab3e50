// SPDX-License-Identifier: Apache-2.0
#include "Platform/System/UUID.h"

#include <uuid.h>

#include <array>

namespace rvf {

std::string newUUIDText() {
  uuid_t identifier;
  uuid_generate_random(identifier);
  std::array<char, UUID_STR_LEN> text{};
  uuid_unparse_upper(identifier, text.data());
  return text.data();
}

}  // namespace rvf
