// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/NSException.h"

namespace rvf {

NSException::NSException(std::string_view name, std::string_view reason)
    : name_(name), reason_(reason), what_(name_ + ": " + reason_) {}

NSException::~NSException() = default;

void NSException::raise(std::string_view name, std::string_view reason) {
  throw NSException(name, reason);
}

}  // namespace rvf
