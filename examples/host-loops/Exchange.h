// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <thread>

#include "Platform/Network/NSNetService.h"
#include "Platform/Network/NSNetServiceBrowser.h"
#include "Platform/RunLoop/NSRunLoop.h"

/// Something for a run loop to do, whoever turns it: a timer, a block posted by another thread, and
/// a service that is published and found. Prints a line for each.
class Exchange final : public rvf::NSNetServiceBrowserDelegate,
                       public std::enable_shared_from_this<Exchange> {
 public:
  /// Starts on this thread's run loop. `done` is called there once everything has happened.
  static std::shared_ptr<Exchange> start(std::function<void()> done);
  ~Exchange() override;

  void netServiceBrowserDidFindService(const rvf::Ref<rvf::NSNetServiceBrowser>& browser,
                                       const rvf::Ref<rvf::NSNetService>& service,
                                       bool moreComing) override;

 private:
  void report(const std::string& event);

  std::function<void()> done_;
  std::set<std::string> awaited_ = {"timer", "post", "found"};
  std::unique_ptr<rvf::RunLoopSource> timer_;
  rvf::Ref<rvf::NSNetService> published_;
  rvf::Ref<rvf::NSNetServiceBrowser> browser_;
  std::thread poster_;
};
