// SPDX-License-Identifier: Apache-2.0
#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <iostream>

#include "examples/host-loops/AsioHost.h"
#include "examples/host-loops/Exchange.h"

// A program whose main loop is asio's.
// NOLINTNEXTLINE(bugprone-exception-escape): an exception ends the program.
int main() {
  asio::io_context context;
  AsioHost host(context);
  const auto exchange = Exchange::start([&context] { context.stop(); });
  asio::steady_timer timer(context, std::chrono::milliseconds(10));
  timer.async_wait([](const std::error_code&) { std::cout << "host" << std::endl; });
  host.run();
}
