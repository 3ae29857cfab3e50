// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/NSException.h"

namespace rvf {

NSException::NSException(std::string_view name, std::string_view reason)
    : texts_(std::make_shared<const Texts>(Texts{std::string(name), std::string(reason),
                                                 std::string(name) + ": " + std::string(reason)})) {
}

NSException::~NSException() = default;

void NSException::raise(std::string_view name, std::string_view reason) {
  throw NSException(name, reason);
}

}  // namespace rvf
