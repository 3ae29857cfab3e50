// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// A block of bytes. Immutable and shared, so passing one on never copies it. Equality is by
/// content.
///
/// Thread: any; immutable. Lifetime: owns its bytes; spans of them end with it.
class RVF_EXPORT NSData final : public NSObject {
 public:
  /// Takes the bytes over.
  explicit NSData(std::vector<std::byte> bytes) noexcept;
  /// Takes over a buffer of which the first `length` bytes count. Nothing is copied.
  NSData(std::unique_ptr<std::byte[]> buffer, std::size_t length) noexcept;

  /// Of no bytes.
  static Ref<NSData> data();
  /// Copies the bytes.
  static Ref<NSData> dataWithBytes(std::span<const std::byte> bytes);
  static Ref<NSData> dataWithBytes(std::string_view bytes);

  static Class classObject();
  Class isa() const override;

  /// Bytes. A span of them is valid as long as the object.
  std::size_t length() const noexcept { return bytes_.size(); }
  bool empty() const noexcept { return bytes_.empty(); }
  std::span<const std::byte> bytes() const noexcept { return bytes_; }
  /// The same bytes as characters, whatever they encode.
  std::string_view characters() const noexcept {
    return {reinterpret_cast<const char*>(bytes_.data()), bytes_.size()};
  }

  bool isEqual(const NSObject* other) const override;
  std::size_t hash() const override;
  /// "<68656c6c 6f>": hexadecimal in groups of four bytes.
  std::string description() const override;

 private:
  std::vector<std::byte> vector_;        // owns the bytes,
  std::unique_ptr<std::byte[]> buffer_;  // or this does
  std::span<const std::byte> bytes_;
};

}  // namespace rvf
