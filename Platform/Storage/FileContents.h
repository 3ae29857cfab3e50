// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>

#include "Platform/Export.h"
#include "Platform/Values/NSData.h"
#include "Platform/Values/NSError.h"

namespace rvf {

/// Codes in `NSCocoaErrorDomain`.
inline constexpr long NSFileReadUnknownError = 256;
inline constexpr long NSFileReadNoPermissionError = 257;
inline constexpr long NSFileReadNoSuchFileError = 260;

/// 1 GiB: the most, in bytes, that is read of one file.
inline constexpr std::size_t kLargestFileContents = std::size_t{1} << 30U;

/// Everything that a regular file holds; a longer one, a pipe or a device is refused with
/// `NSFileReadUnknownError` and not waited for. Absent with one of the errors above, whose user
/// info has the path under `NSFilePathErrorKey` and the system's error, in `NSPOSIXErrorDomain`, as
/// the underlying one. Thread-safe.
RVF_EXPORT Ref<NSData> contentsOfFile(const std::string& path, Ref<NSError>* error = nullptr);

/// The same of an open file, from where it stands. `path` is for the error only.
Ref<NSData> contentsOfDescriptor(int descriptor, const std::string& path, Ref<NSError>* error);

/// The error for a file that could not be read, or written: `code` with the path and the system's
/// error number.
Ref<NSError> fileError(long code, const std::string& path, int errorNumber);
/// The code for a file that could not be read.
RVF_EXPORT long fileReadErrorCode(int errorNumber) noexcept;

}  // namespace rvf
