// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// How a column of a table is shown at first. Everything is 0 or false in a new one.
///
/// Thread: one at a time. Lifetime: refers to nothing.
class RVF_EXPORT RVFColumnWidthInfo final : public NSObject {
 public:
  static Class classObject();
  Class isa() const override;

  /// In points.
  double defaultWidth() const noexcept { return defaultWidth_; }
  void setDefaultWidth(double points);
  /// The narrowest that the user may make it, in points.
  double minimumWidth() const noexcept { return minimumWidth_; }
  void setMinimumWidth(double points);
  /// Whether the column grows and shrinks with its table.
  bool autoresize() const noexcept { return autoresize_; }
  void setAutoresize(bool autoresize);
  /// The position among the table's columns.
  long listOrder() const noexcept { return listOrder_; }
  void setListOrder(long listOrder);

 private:
  double defaultWidth_ = 0;
  double minimumWidth_ = 0;
  bool autoresize_ = false;
  long listOrder_ = 0;
};

}  // namespace rvf
