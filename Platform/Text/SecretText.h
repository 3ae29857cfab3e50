// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Export.h"

namespace rvf {

/// Overwrites memory with zeros, by a write that the compiler may not leave out.
RVF_EXPORT void wipeMemory(void* bytes, std::size_t size) noexcept;

/// Wipes all that a text occupies, its unused and built-in room too, and leaves it empty. Copies
/// that the text left behind when it grew are out of reach: reserve its room before filling it.
RVF_EXPORT void wipeText(std::string& text) noexcept;

/// A text, or none, that nobody may find in memory later: card numbers, tracks. Its bytes stand in
/// one block from the beginning to the end, never grow and never move, and are wiped before the
/// block is given back.
///
///     accountNumber_ = SecretText(field);   // `field` may be part of the former text
///
/// Moving hands the block over and leaves none; there is no copying, so that no copy is made by
/// accident. Assigning wipes the former text once the new one is in place.
///
/// Thread: one at a time. Lifetime: owns its bytes and wipes them; views of it end with the text.
class RVF_EXPORT SecretText final {
 public:
  SecretText() noexcept = default;
  explicit SecretText(std::optional<std::string_view> text);

  /// Absent if there is none. Valid until the text is wiped: its owner destroyed or assigned to.
  std::optional<std::string_view> view() const noexcept {
    if (!bytes_) return std::nullopt;
    return std::string_view(bytes_.get(), bytes_.get_deleter().size);
  }

 private:
  struct Wiper {
    Wiper() noexcept : size(0) {}
    explicit Wiper(std::size_t blockSize) noexcept : size(blockSize) {}
    std::size_t size;
    void operator()(char* bytes) const noexcept {
      wipeMemory(bytes, size);
      std::allocator<char>().deallocate(bytes, size);
    }
  };

  std::unique_ptr<char, Wiper> bytes_;
};

}  // namespace rvf
