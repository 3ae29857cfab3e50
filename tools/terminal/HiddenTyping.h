// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <termios.h>

#include <optional>

/// While it lives, what is typed on standard input is not shown, if that is a terminal. A program
/// that a signal ends leaves it so; shells bring their own settings back.
class HiddenTyping final {
 public:
  HiddenTyping();
  ~HiddenTyping();
  HiddenTyping(const HiddenTyping&) = delete;
  HiddenTyping& operator=(const HiddenTyping&) = delete;

 private:
  std::optional<termios> former_;
};
