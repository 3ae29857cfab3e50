// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>

namespace rvf {

/// Makes one system call (`SYS_...`) fail with this error on the calling thread, for good.
inline void failCallOfThisThread(long call, int error) {
  sock_filter program[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<std::uint32_t>(call), 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<std::uint32_t>(error)),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)};
  const sock_fprog filter{4, program};
  if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
      ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) != 0) {
    throw std::runtime_error("the system filters no calls");
  }
}

}  // namespace rvf
