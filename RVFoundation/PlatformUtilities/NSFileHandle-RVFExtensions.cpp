// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/PlatformUtilities/NSFileHandle-RVFExtensions.h"

#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <limits>
#include <optional>

#include "Platform/Runtime/NSException.h"
#include "Platform/Storage/NSTemporaryDirectory.h"
#include "Platform/Text/Format.h"
#include "Platform/Text/PathText.h"

namespace rvf {
namespace {

constexpr std::uint32_t kMost = std::numeric_limits<std::uint32_t>::max();

/// The kernel cuts the rest of a regular file to 32 bits, and a position behind the end is less
/// than nothing; absent for what is no regular file.
std::optional<std::uint32_t> restOfRegularFile(int descriptor) {
  struct stat status = {};
  if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  const off_t rest = status.st_size - lseek(descriptor, 0, SEEK_CUR);
  return static_cast<std::uint32_t>(std::clamp<off_t>(rest, 0, kMost));
}

}  // namespace

std::uint32_t RVF_availableByteCountNonBlocking(const Ref<NSFileHandle>& handle) {
  if (!handle) return 0;
  int count = 0;
  if (ioctl(handle->fileDescriptor(), FIONREAD, &count) == -1) {
    const int problem = errno;
    NSException::raise(NSFileHandleOperationException,
                       stringWithFormat("ioctl() Err # %d", problem));
  }
  const auto rest = restOfRegularFile(handle->fileDescriptor());
  return rest.value_or(static_cast<std::uint32_t>(count));
}

Ref<NSData> readDataOfLengthNonBlocking(const Ref<NSFileHandle>& handle, std::uint32_t length) {
  const std::uint32_t count = std::min(RVF_availableByteCountNonBlocking(handle), length);
  return count == 0 ? nullptr : handle->readDataOfLength(count);
}

Ref<NSData> availableDataNonBlocking(const Ref<NSFileHandle>& handle) {
  return readDataOfLengthNonBlocking(handle, kMost);
}

Ref<NSFileHandle> NSFileHandle_RVFExtensions::RVF_fileHandleForTemporaryFileUsingFilePath(
    std::string* path, Ref<NSError>* andError) {
  std::string buffer = appendPathComponent(NSTemporaryDirectory(), "tempfile.XXXXXX");
  // mkstemp, and no child process inherits the file.
  const int descriptor = mkostemp(buffer.data(), O_CLOEXEC);
  if (descriptor == -1) {
    const int problem = errno;
    reportError(andError, [&] { return NSError::errorWithDomain(NSPOSIXErrorDomain, problem); });
    return nullptr;
  }
  auto handle = NSFileHandle::initWithFileDescriptor(descriptor, true);
  if (path) *path = std::move(buffer);
  return handle;
}

}  // namespace rvf
