// SPDX-License-Identifier: Apache-2.0
#include "tools/terminal/ProgressLine.h"

#include <unistd.h>

#include <iostream>

#include "tools/terminal/CapableTerminal.h"

namespace {

constexpr std::chrono::milliseconds kInterval{100};

}  // namespace

ProgressLine::ProgressLine() : isShown_(isCapableTerminal(STDERR_FILENO)) {}

ProgressLine::~ProgressLine() {
  clear();
}

void ProgressLine::show(const std::string& text) {
  const auto now = std::chrono::steady_clock::now();
  if (!isShown_ || now - lastShown_ < kInterval) return;
  lastShown_ = now;
  isDirty_ = true;
  std::cerr << "\r\x1b[K" << text << std::flush;
}

void ProgressLine::clear() {
  if (isDirty_) std::cerr << "\r\x1b[K" << std::flush;
  isDirty_ = false;
}
