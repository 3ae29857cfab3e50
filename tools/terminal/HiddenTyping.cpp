// SPDX-License-Identifier: Apache-2.0
#include "tools/terminal/HiddenTyping.h"

#include <unistd.h>

HiddenTyping::HiddenTyping() {
  termios settings = {};
  if (::tcgetattr(STDIN_FILENO, &settings) != 0) return;  // no terminal
  former_ = settings;
  settings.c_lflag &= ~static_cast<tcflag_t>(ECHO);
  ::tcsetattr(STDIN_FILENO, TCSANOW, &settings);
}

HiddenTyping::~HiddenTyping() {
  if (former_) ::tcsetattr(STDIN_FILENO, TCSANOW, &*former_);
}
