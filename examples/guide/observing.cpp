// SPDX-License-Identifier: Apache-2.0
#include <iostream>
#include <set>
#include <string>

#include "Platform/Observation/KeyValueBinding.h"
#include "Platform/Observation/KeyValueCoding.h"
#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Observation/NSNotificationCenter.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/ServerDiscovery/RVFStaticServer.h"

using namespace rvf;

namespace {

class Ticket final : public NSObject {
 public:
  static Class classObject() {
    static const Class kClass =
        ClassBuilder<Ticket>("Ticket", NSObject::classObject())
            .method<&Ticket::server>("server")
            .method<&Ticket::setServer>("setServer:")
            .method<&Ticket::copies>("copies")
            .method<&Ticket::setCopies>("setCopies:")
            .method<&Ticket::title>("title")
            .method("keyPathsForValuesAffectingTitle",
                    dependentKeyImplementation<&Ticket::keyPathsForValuesAffectingTitle>())
            .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

  const Ref<RVFStaticServer>& server() const { return server_; }
  void setServer(Ref<RVFStaticServer> server) {
    announceChange(*this, "server", [&] { server_ = server; });
  }
  int copies() const { return copies_; }
  void setCopies(int copies) {
    announceChange(*this, "copies", [&] { copies_ = copies; });
  }
  std::string title() const {
    return std::to_string(copies_) + " x " + (server_ ? server_->displayName() : "nowhere");
  }
  static std::set<std::string> keyPathsForValuesAffectingTitle() {
    return {"copies", "server.displayName"};
  }

 private:
  Ref<RVFStaticServer> server_;
  int copies_ = 1;
};

class Screen final : public NSObject {
 public:
  static Class classObject() {
    static const Class kClass =
        ClassBuilder<Screen>("Screen", NSObject::classObject())
            .method<&Screen::ticketChanged>("observeValueForKeyPath:ofObject:change:context:")
            .method<&Screen::shopClosed>("shopClosed:")
            .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

  void ticketChanged(std::string_view keyPath, const id&, const Ref<NSDictionary>& change, void*) {
    std::cout << keyPath << ": " << change->objectForKey("old")->description() << " > "
              << change->objectForKey("new")->description() << '\n';
  }
  void shopClosed(const Ref<NSNotification>& notification) {
    std::cout << notification->name() << ": " << notification->object()->description() << '\n';
  }
};

}  // namespace

int main() {
  const auto ticket = std::make_shared<Ticket>();
  const auto server = RVFStaticServer::staticServerWithAddress("till.example");
  setValueForKey(*ticket, server, "server");
  setValueForKey(*ticket, box(2), "copies");
  std::cout << valueForKeyPath(*ticket, "server.serverAddress")->description() << '\n';

  const auto screen = std::make_shared<Screen>();
  addObserverForKeyPath(*ticket, screen, "title",
                        NSKeyValueObservingOptionOld | NSKeyValueObservingOptionNew);
  server->setServerDescription("Till");  // deep inside what the title depends on
  ticket->setCopies(3);
  ticket->setServer(nullptr);
  removeObserverForKeyPath(*ticket, screen, "title");

  const auto other = std::make_shared<Ticket>();
  bindToObject(*other, "copies", ticket, "copies");
  ticket->setCopies(7);
  std::cout << other->title() << '\n';
  unbind(*other, "copies");

  const auto center = NSNotificationCenter::defaultCenter();
  center->addObserver(screen, SEL("shopClosed:"), "ShopClosed", nullptr);
  center->postNotificationName("ShopClosed", box("Main Street"));
}
