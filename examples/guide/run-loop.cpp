// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include "Platform/RunLoop/NSRunLoop.h"
#include "RVFoundation/BackgroundExecution/NSObject-RVFExtensions.h"
#include "RVFoundation/BackgroundExecution/RVFBlockQueue.h"

using namespace rvf;

int main() {
  const auto loop = NSRunLoop::mainRunLoop();
  const auto screen = std::make_shared<NSObject>();  // whoever waits for the answer
  RVF_performBlockInBackground(screen, [screen] {
    const auto answer = std::to_string(6 * 7);  // slow work, on a thread of its own
    RVF_performBlockOnMainThread(screen, [answer] { std::cout << answer << '\n'; });
  });

  const auto steps = RVFBlockQueue::queue();
  steps->addBlock([loop](const auto&, const auto& done) {
    loop->performAfterDelay(0.05, {std::string(NSRunLoopCommonModes)}, [done] {
      std::cout << "first\n";
      done(nullptr);
    });
  });
  steps->addBlock([](const auto&, const auto& done) {
    std::cout << "second\n";
    done(nullptr);
  });
  steps->executeQueueUsingCompletion([loop](const Ref<NSError>& error) {
    std::cout << (error ? "failed\n" : "done\n");
    loop->stop();
  });
  loop->run();
}
