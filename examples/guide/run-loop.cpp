// SPDX-License-Identifier: Apache-2.0
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <iostream>

#include "Platform/Network/CFSocket.h"
#include "Platform/Network/SocketAddress.h"
#include "Platform/RunLoop/NSRunLoop.h"
#include "RVFoundation/BackgroundExecution/NSObject-RVFExtensions.h"
#include "RVFoundation/BackgroundExecution/RVFBlockQueue.h"

using namespace rvf;

namespace {

void connected(const Ref<CFSocket>&, CFSocketCallBackType, const Ref<NSData>& address,
               const void* data, void*) {
  std::cout << "from " << SocketAddress::fromDataBlock(address)->addressText() << '\n';
  ::close(*static_cast<const int*>(data));
  NSRunLoop::currentRunLoop()->stop();
}

/// A descriptor, or -1.
int connectionTo(const Ref<NSData>& address) {
  sockaddr_storage storage{};
  const auto length =
      static_cast<socklen_t>(SocketAddress::fromDataBlock(address)->toSockaddr(storage));
  const int client = ::socket(PF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (::connect(client, reinterpret_cast<const sockaddr*>(&storage), length) == 0) return client;
  ::close(client);
  return -1;
}

}  // namespace

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

  const auto listener =
      CFSocketCreate(PF_INET, SOCK_STREAM, 0, kCFSocketAcceptCallBack, &connected, {});
  const auto anyPort = SocketAddress::withIPv4({127, 0, 0, 1}, 0).dataBlock();
  if (CFSocketSetAddress(listener, anyPort) != kCFSocketSuccess) return 1;
  CFRunLoopAddSource(loop, CFSocketCreateRunLoopSource(listener, 0), NSRunLoopCommonModes);
  const int client = connectionTo(CFSocketCopyAddress(listener));  // usually another process
  if (client < 0) return 1;
  loop->run();
  CFSocketInvalidate(listener);
  ::close(client);
}
