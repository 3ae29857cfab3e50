// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// Marks that key-value coding is setting a key, on this thread and for as long as the mark lives,
/// and announces that change itself: what the setter announces of the same key is that change.
class CodingAnnouncement final {
 public:
  CodingAnnouncement(const NSObject& object, std::string_view key) noexcept;
  ~CodingAnnouncement();
  CodingAnnouncement(const CodingAnnouncement&) = delete;
  CodingAnnouncement& operator=(const CodingAnnouncement&) = delete;

  static bool covers(const NSObject& object, std::string_view key) noexcept;

  /// Observers are being told: what they change are changes of their own.
  class Suspension final {
   public:
    Suspension() noexcept;
    ~Suspension();
    Suspension(const Suspension&) = delete;
    Suspension& operator=(const Suspension&) = delete;

   private:
    const CodingAnnouncement* const suspended_;
  };

 private:
  const NSObject& object_;
  const std::string_view key_;
  const CodingAnnouncement* const enclosing_;
};

}  // namespace rvf
