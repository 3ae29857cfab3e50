// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

#include "Platform/Export.h"
#include "Platform/Values/NSDictionary.h"

namespace rvf {

/// A dictionary that can change. Iterate a `copy()` where what is called might change it. Removed
/// objects are released when the change is complete, so their destructors may use the dictionary.
///
/// Thread: one at a time. Lifetime: keeps keys and values while they are in it.
class RVF_EXPORT NSMutableDictionary final : public NSDictionary {
 public:
  using NSDictionary::NSDictionary;

  /// Empty.
  static Ref<NSMutableDictionary> dictionary();

  static Class classObject();
  Class isa() const override;

  /// Replaces an earlier value. An absent key or value raises `NSInvalidArgumentException`.
  void setObject(id object, const id& key);
  void setObject(id object, std::string_view key);
  /// Removing nothing is fine.
  void removeObjectForKey(const id& key);
  void removeObjectForKey(std::string_view key);
  void removeAllObjects();

  /// The entries of this moment, immutable.
  Ref<NSDictionary> copy() const { return std::make_shared<NSDictionary>(entries()); }
};

}  // namespace rvf
