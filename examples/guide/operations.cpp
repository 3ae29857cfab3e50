// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include "Platform/RunLoop/NSBlockOperation.h"
#include "Platform/RunLoop/NSOperationQueue.h"
#include "Platform/RunLoop/NSRunLoop.h"
#include "RVFoundation/BackgroundExecution/RVFRetryingBlockExecutor.h"
#include "RVFoundation/BackgroundExecution/RVFRunLoopOperation.h"

using namespace rvf;

int main() {
  const auto loop = NSRunLoop::mainRunLoop();
  const RunLoopModes modes{std::string(NSRunLoopCommonModes)};
  const auto total = NSBlockOperation::blockOperationWithBlock([] { std::cout << "added up\n"; });
  const auto receipt = std::make_shared<RVFRunLoopOperation>();
  receipt->setExecutionBlock([&] {
    loop->performAfterDelay(0.05, modes, [&] {
      std::cout << "printed\n";
      receipt->finishWithError(nullptr);
    });
  });
  const auto drawer = NSBlockOperation::blockOperationWithBlock([loop] {
    std::cout << "drawer open\n";
    loop->stop();
  });
  receipt->addDependency(total);
  drawer->addDependency(receipt);
  const auto workers = std::make_shared<NSOperationQueue>();
  workers->addOperation(total);
  NSOperationQueue::mainQueue()->addOperation(drawer);
  NSOperationQueue::mainQueue()->addOperation(receipt);
  loop->run();

  const auto executor = std::make_shared<RVFRetryingBlockExecutor>();
  executor->setRetryInterval(0.05);
  int attempts = 0;
  executor->executeBlockUntilSuccess(
      [&](const auto& report) {
        std::cout << "attempt " << ++attempts << '\n';
        loop->performBlock([&attempts, report] { report(attempts == 3); });
      },
      [loop] { loop->stop(); });
  loop->run();
}
