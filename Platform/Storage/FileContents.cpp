// SPDX-License-Identifier: Apache-2.0
#include "Platform/Storage/FileContents.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <system_error>
#include <utility>
#include <vector>

#include "Platform/Runtime/ScopeExit.h"
#include "Platform/Values/NSString.h"

namespace rvf {

long fileReadErrorCode(int errorNumber) noexcept {
  switch (errorNumber) {
    case ENOENT:
    case ENOTDIR:
      return NSFileReadNoSuchFileError;
    case EACCES:
    case EPERM:
      return NSFileReadNoPermissionError;
    default:
      return NSFileReadUnknownError;
  }
}

Ref<NSError> fileError(long code, const std::string& path, int errorNumber) {
  const auto text = box(std::generic_category().message(errorNumber));
  const auto cause = NSError::errorWithDomain(
      NSPOSIXErrorDomain, errorNumber,
      NSDictionary::dictionaryWithEntries({{NSLocalizedDescriptionKey, text}}));
  return NSError::errorWithDomain(
      NSCocoaErrorDomain, code,
      NSDictionary::dictionaryWithEntries(
          {{NSFilePathErrorKey, box(path)}, {NSUnderlyingErrorKey, cause}}));
}

Ref<NSData> contentsOfDescriptor(int descriptor, const std::string& path, Ref<NSError>* error) {
  constexpr std::size_t kMostAtOnce = std::size_t{16} << 20U;  // sizes may be far from the truth
  const auto fail = [&](int problem) {
    reportError(error, [&] { return fileError(fileReadErrorCode(problem), path, problem); });
    return nullptr;
  };
  struct stat status = {};
  if (fstat(descriptor, &status) != 0) return fail(errno);
  if (S_ISDIR(status.st_mode)) return fail(EISDIR);
  if (!S_ISREG(status.st_mode)) return fail(EOPNOTSUPP);
  const auto size = static_cast<std::size_t>(status.st_size);
  if (size > kLargestFileContents) return fail(EFBIG);
  std::vector<std::byte> bytes(std::min(size + 1, kMostAtOnce));
  std::size_t length = 0;
  while (true) {
    if (length > kLargestFileContents) return fail(EFBIG);
    if (length == bytes.size()) bytes.resize(2 * length);
    const ssize_t count = ::read(descriptor, bytes.data() + length, bytes.size() - length);
    if (count == 0) break;
    if (count > 0) length += static_cast<std::size_t>(count);
    if (count < 0 && errno != EINTR) return fail(errno);
  }
  bytes.resize(length);
  return std::make_shared<NSData>(std::move(bytes));
}

Ref<NSData> contentsOfFile(const std::string& path, Ref<NSError>* error) {
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) {
    const int problem = errno;
    reportError(error, [&] { return fileError(fileReadErrorCode(problem), path, problem); });
    return nullptr;
  }
  const ScopeExit closed([descriptor] { ::close(descriptor); });
  return contentsOfDescriptor(descriptor, path, error);
}

}  // namespace rvf
