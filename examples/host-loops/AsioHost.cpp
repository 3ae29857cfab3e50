// SPDX-License-Identifier: Apache-2.0
#include "examples/host-loops/AsioHost.h"

#include "Platform/RunLoop/NSRunLoop.h"

using rvf::NSRunLoop;

AsioHost::AsioHost(asio::io_context& context)
    : context_(context), descriptor_(context, NSRunLoop::currentRunLoop()->pollableDescriptor()) {
  awaitWork();
}

AsioHost::~AsioHost() {
  descriptor_.release();
}

void AsioHost::awaitWork() {
  descriptor_.async_wait(asio::posix::descriptor_base::wait_read,
                         [this](const std::error_code& error) {
                           if (error) return;
                           NSRunLoop::currentRunLoop()->turn();
                           awaitWork();
                         });
}

void AsioHost::run() {
  const auto loop = NSRunLoop::currentRunLoop();
  while (!context_.stopped()) {
    const auto wait = loop->nextTimeout();
    if (wait)
      context_.run_one_for(*wait);
    else
      context_.run_one();
    loop->turn();
  }
}
