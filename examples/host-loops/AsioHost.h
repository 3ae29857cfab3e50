// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <asio/io_context.hpp>
#include <asio/posix/stream_descriptor.hpp>

/// Runs an asio context and this thread's run loop together.
///
/// Asio has no hook before its wait, so the driver runs it one handler at a time and turns the run
/// loop in between. The descriptor only ends the wait.
class AsioHost final {
 public:
  explicit AsioHost(asio::io_context& context);
  AsioHost(const AsioHost&) = delete;
  AsioHost& operator=(const AsioHost&) = delete;
  /// The descriptor stays with the run loop.
  ~AsioHost();

  /// Until the context is stopped.
  void run();

 private:
  void awaitWork();

  asio::io_context& context_;
  asio::posix::stream_descriptor descriptor_;
};
