// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>

#include "Platform/Export.h"
#include "Platform/Storage/NSFileHandle.h"
#include "Platform/Values/NSError.h"

namespace rvf {

/// How many bytes can be read now without waiting (FIONREAD): what is pending in a pipe, socket or
/// terminal, or the rest of a regular file. At most 2^32 - 1. 0 for an absent handle, and at the
/// end.
///
/// Raises `NSFileHandleOperationException` with the reason "ioctl() Err # N", N being `errno`,
/// where this cannot be told: a closed descriptor, a directory, a listening socket. A socket that
/// was never connected has 0 bytes.
RVF_EXPORT std::uint32_t RVF_availableByteCountNonBlocking(const Ref<NSFileHandle>& handle);

/// What is there, up to a length, without waiting for more; absent if nothing is. Raises like the
/// above. Waits after all if another reader takes the bytes away meanwhile. Of a datagram, what
/// lies beyond the length is lost; an empty one is never taken, and hides those behind it.
RVF_EXPORT Ref<NSData> readDataOfLengthNonBlocking(const Ref<NSFileHandle>& handle,
                                                   std::uint32_t length);
/// All that is there.
RVF_EXPORT Ref<NSData> availableDataNonBlocking(const Ref<NSFileHandle>& handle);

/// Operations of the file handle class itself.
///
/// Thread: any. Lifetime: the handle owns the descriptor; the file is the caller's to remove.
struct RVF_EXPORT NSFileHandle_RVFExtensions {
  /// Creates a file "tempfile.XXXXXX", X being letters and digits, in the temporary directory, for
  /// the owner only, and opens it for reading and writing. The handle closes it; removing it is the
  /// caller's task. Stores the path if asked. Absent with an error of `NSPOSIXErrorDomain`, without
  /// user info, if that fails. Thread-safe.
  static Ref<NSFileHandle> RVF_fileHandleForTemporaryFileUsingFilePath(
      std::string* path = nullptr, Ref<NSError>* andError = nullptr);
};

}  // namespace rvf
