// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/RunningMethod.h"

namespace rvf {
namespace {

constinit thread_local const RunningMethod* innermostMark = nullptr;

}  // namespace

RunningMethod::RunningMethod(const Method& method) noexcept
    : method_(method), enclosing_(innermostMark) {
  innermostMark = this;
}

RunningMethod::~RunningMethod() {
  innermostMark = enclosing_;
}

const RunningMethod* RunningMethod::innermost() noexcept {
  return innermostMark;
}

}  // namespace rvf
