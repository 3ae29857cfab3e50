// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "RVFoundation/ServerDiscovery/RVFRemoteNotificationCenter.h"

using namespace rvf;

namespace {

class Till final : public NSObject {
 public:
  static Class classObject() {
    static const Class kClass = ClassBuilder<Till>("Till", NSObject::classObject())
                                    .method<&Till::menuChanged>("menuChanged")
                                    .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

  void menuChanged() {
    std::cout << "the menu has changed\n";
    NSRunLoop::mainRunLoop()->stop();
  }
};

}  // namespace

int main() {
  const auto till = std::make_shared<Till>();
  const auto center = RVFRemoteNotificationCenter::defaultCenter();
  center->addObserver(till, SEL("menuChanged"), "_menu-changed._tcp");

  center->postNotificationName("_menu-changed._tcp");  // usually another process, on another host

  NSRunLoop::mainRunLoop()->run();
  center->removeObserver(till);
}
