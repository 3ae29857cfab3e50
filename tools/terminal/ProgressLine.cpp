// SPDX-License-Identifier: Apache-2.0
#include "tools/terminal/ProgressLine.h"

#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <string_view>

namespace {

constexpr std::chrono::milliseconds kInterval{100};

bool isCapableTerminal() {
  const char* kind = std::getenv("TERM");  // NOLINT(concurrency-mt-unsafe): nothing sets it here
  return isatty(STDERR_FILENO) == 1 && kind && std::string_view(kind) != "dumb";
}

}  // namespace

ProgressLine::ProgressLine() : isShown_(isCapableTerminal()) {}

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
