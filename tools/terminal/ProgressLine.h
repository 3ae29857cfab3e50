// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <string>

/// One line on standard error that is written over and over, and gone at the end. Writes nothing
/// where standard error is no terminal, or TERM is "dumb".
class ProgressLine final {
 public:
  ProgressLine();
  ~ProgressLine();
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  bool isShown() const noexcept { return isShown_; }
  /// Shows a text, at most ten times a second; the rest is dropped.
  void show(const std::string& text);
  void clear();

 private:
  std::chrono::steady_clock::time_point lastShown_;
  bool isShown_;
  bool isDirty_ = false;
};
