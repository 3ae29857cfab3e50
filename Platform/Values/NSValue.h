// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Runtime/TypeEncoding.h"

namespace rvf {

/// A record of plain bytes, or a reference that does not own, as an object.
///
/// Two boxed records are equal when their type encodings and bytes are; two non-owning references
/// are equal exactly when they refer to the same object.
///
/// Thread: any; immutable. Lifetime: owns a record's bytes; an object it refers to without owning
/// may go, and then reads as absent.
class RVF_EXPORT NSValue : public NSObject {
 public:
  NSValue(std::span<const std::byte> bytes, std::string_view objCType);

  /// Boxes a trivially copyable record under the given type encoding, for example "{Point=qq}".
  template <class T>
  static Ref<NSValue> valueWithBytes(const T& record, std::string_view objCType) {
    static_assert(std::is_trivially_copyable_v<T>);
    return std::make_shared<NSValue>(std::as_bytes(std::span(&record, 1)), objCType);
  }
  /// Refers to an object without keeping it alive.
  static Ref<NSValue> valueWithNonretainedObject(const id& object);

  static Class classObject();
  Class isa() const override;

  /// Compare it before reading a record: `getValue` looks at the size alone.
  const std::string& objCType() const noexcept { return objCType_; }
  /// The record, or nothing if its size is not that of `T`.
  template <class T>
  bool getValue(T& record) const {
    static_assert(std::is_trivially_copyable_v<T>);
    if (bytes_.size() != sizeof(T)) return false;
    std::memcpy(&record, bytes_.data(), sizeof(T));
    return true;
  }
  /// Empty for a number.
  const std::vector<std::byte>& bytes() const noexcept { return bytes_; }
  /// The object referred to; absent if it is gone, or if this boxes a record.
  id nonretainedObjectValue() const { return object_.lock(); }

  bool isEqual(const NSObject* other) const override;
  std::size_t hash() const override;

 private:
  std::vector<std::byte> bytes_;
  std::string objCType_;
  std::weak_ptr<NSObject> object_;
};

}  // namespace rvf
