// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

#include "Platform/Export.h"
#include "Platform/Network/NSURL.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Values/NSDictionary.h"
#include "Platform/Values/NSError.h"
#include "RVFoundation/PlatformUtilities/RVFColumnWidthInfo.h"

namespace rvf {

/// The widths, order and growing of table columns, from a property list of any form:
///
///     { orders = { "Default Column Width" = 80; "Auto-Resize Width" = YES;
///                  Columns = { number = { "Default Column Width" = 60; "List Order" = 1; }; }; };
///                  }
///
/// What a column does not set its table says, under the same keys: "Default Column Width",
/// "Minimum Column Width", "Auto-Resize Width" and "List Order". Texts count as the numbers or
/// truth values that they read as.
///
/// Thread: one at a time. Lifetime: keeps the property list; the records that it answers are new
/// ones.
class RVF_EXPORT RVFColumnWidthRegistry final : public NSObject {
 public:
  static Class classObject();
  Class isa() const override;

  /// The whole file's dictionary; absent until one is loaded or set.
  const Ref<NSDictionary>& registry() const noexcept { return registry_; }
  void setRegistry(Ref<NSDictionary> registry);

  /// Reads a file, named by a file URL, in place of what was there. False, with the registry as it
  /// was, if that fails: with the error of `contentsOfFile` or of `NSPropertyListSerialization`,
  /// with `NSFileReadUnknownError` for what is no file URL, and with
  /// `NSPropertyListReadCorruptError` if the root is no dictionary.
  bool loadFromFile(const Ref<NSURL>& location, Ref<NSError>* error = nullptr);

  /// A new record of what the registry says about a column; never absent. 0 or false for what
  /// neither column nor table say, and for values that are neither number nor text.
  Ref<RVFColumnWidthInfo> columnWidthInfoForKey(std::string_view key,
                                                std::string_view andTableIdentifier) const;

  /// The first one's value if it has one, else the second one's. Either may be absent.
  id objectForKey(std::string_view key, const Ref<NSDictionary>& inDictionary,
                  const Ref<NSDictionary>& orDictionary) const;

 private:
  Ref<NSDictionary> registry_;
};

}  // namespace rvf
