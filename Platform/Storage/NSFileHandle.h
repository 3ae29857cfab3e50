// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Values/NSData.h"

namespace rvf {

inline constexpr std::string_view NSFileHandleOperationException = "NSFileHandleOperationException";

/// An open file, pipe, socket or terminal.
///
///     const auto handle = NSFileHandle::initWithFileDescriptor(descriptor, true);
///     const Ref<NSData> head = handle->readDataOfLength(512);
///
/// Thread: one at a time. Lifetime: closes the descriptor if it owns it; else the caller keeps that
/// open meanwhile.
class RVF_EXPORT NSFileHandle final : public NSObject {
 public:
  /// The descriptor stays the caller's, who closes it.
  static Ref<NSFileHandle> initWithFileDescriptor(int descriptor);
  /// With `closeOnDealloc` the handle owns the descriptor, and closes it with its own end.
  static Ref<NSFileHandle> initWithFileDescriptor(int descriptor, bool closeOnDealloc);

  ~NSFileHandle() override;

  static Class classObject();
  Class isa() const override;

  /// For system calls such as `fstat`. Whoever owns it closes it.
  int fileDescriptor() const noexcept { return descriptor_; }

  /// Reads until that many bytes have come or the end is reached, and waits for them; empty at the
  /// end. Raises `NSFileHandleOperationException` if reading fails, also where a descriptor that
  /// does not wait has less. Bytes that were read before are lost then.
  Ref<NSData> readDataOfLength(std::size_t length);

 private:
  NSFileHandle(int descriptor, bool closeOnDealloc) noexcept
      : descriptor_(descriptor), isOwner_(closeOnDealloc) {}

  int descriptor_;
  bool isOwner_;
};

}  // namespace rvf
