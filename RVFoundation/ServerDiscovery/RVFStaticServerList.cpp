// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/ServerDiscovery/RVFStaticServerList.h"

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

#include "Platform/Locale/NSBundle.h"
#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Text/Format.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&RVFStaticServerList::classObject);

const RVFStaticServer& serverOf(const id& object) {
  return static_cast<const RVFStaticServer&>(*object);
}

template <class Condition>
Ref<RVFStaticServer> firstServer(const NSArray& servers, Condition condition) {
  const auto found = std::ranges::find_if(
      servers.objects(), [&](const id& object) { return condition(serverOf(object)); });
  return found == servers.objects().end() ? nullptr
                                          : std::static_pointer_cast<RVFStaticServer>(*found);
}

}  // namespace

Ref<RVFStaticServerList> RVFStaticServerList::sharedServerList() {
  static const auto kShared = std::make_shared<RVFStaticServerList>();
  return kShared;
}

RVFStaticServerList::RVFStaticServerList(Ref<NSUserDefaults> defaults)
    : defaults_(std::move(defaults)) {
  load();
}

Class RVFStaticServerList::classObject() {
  using Self = RVFStaticServerList;
  static const Class kClass =
      ClassBuilder<Self>("RVFStaticServerList", NSObject::classObject())
          .property("serverCount", "TQ,R,N")
          .ivar("servers", "@\"NSMutableArray\"")
          .method<&Self::load>("load")
          .method<&Self::save>("save")
          .method<&Self::serverCount>("serverCount")
          .method<&Self::serverAtIndex>("serverAtIndex:")
          .method<&Self::indexOfServer>("indexOfServer:")
          .method<&Self::serverForServerId>("serverForServerId:")
          .method<&Self::serverWithServerDescription>("serverWithServerDescription:")
          .method<&Self::addServer>("addServer:")
          .method<&Self::insertServer>("insertServer:atIndex:")
          .method<&Self::removeServerAtIndex>("removeServerAtIndex:")
          .method<&Self::nextUntitledServerName>("nextUntitledServerName")
          .registered();
  return kClass;
}

Class RVFStaticServerList::isa() const {
  return classObject();
}

void RVFStaticServerList::load() {
  const auto records =
      std::dynamic_pointer_cast<NSArray>(defaults_->arrayForKey(kStaticServersKey));
  const auto loaded = NSMutableArray::array();
  if (records) {
    for (const id& record : *records) {
      loaded->addObject(
          RVFStaticServer::initWithDataDictionary(std::dynamic_pointer_cast<NSDictionary>(record)));
    }
  }
  replaceServers(*loaded);
}

void RVFStaticServerList::replaceServers(const NSArray& servers) {
  announceChange(*this, "serverCount", [&] {
    servers_->removeAllObjects();
    for (const id& server : servers.objects())
      servers_->addObject(server);
  });
}

void RVFStaticServerList::save() {
  std::vector<id> records;
  records.reserve(servers_->count());
  for (const id& server : servers_->objects())
    records.push_back(serverOf(server).dataDictionary());
  defaults_->setObject(NSArray::arrayWithObjects(std::move(records)), kStaticServersKey);
  defaults_->synchronize();
}

Ref<RVFStaticServer> RVFStaticServerList::serverAtIndex(std::size_t index) const {
  return std::static_pointer_cast<RVFStaticServer>(servers_->objectAtIndex(index));
}

std::size_t RVFStaticServerList::indexOfServer(const Ref<RVFStaticServer>& server) const {
  return servers_->indexOfObject(server);
}

Ref<RVFStaticServer> RVFStaticServerList::serverForServerId(std::string_view serverId) const {
  return firstServer(*servers_,
                     [&](const RVFStaticServer& server) { return server.serverId() == serverId; });
}

Ref<RVFStaticServer> RVFStaticServerList::serverWithServerDescription(
    std::string_view description) const {
  return firstServer(*servers_, [&](const RVFStaticServer& server) {
    return server.serverDescription() == description;
  });
}

void RVFStaticServerList::changeAndSave(const std::function<void(NSMutableArray&)>& change) {
  const id alive = weak_from_this().lock();
  const auto before = servers_->copy();
  // Raises what there is to raise while nothing has been announced: that would stay open.
  change(*std::make_shared<NSMutableArray>(before->objects()));
  announceChange(*this, "serverCount", [&] { change(*servers_); });
  try {
    save();
  } catch (...) {
    replaceServers(*before);
    throw;
  }
}

void RVFStaticServerList::addServer(const Ref<RVFStaticServer>& server) {
  changeAndSave([&](NSMutableArray& servers) { servers.addObject(server); });
}

void RVFStaticServerList::insertServer(const Ref<RVFStaticServer>& server, std::size_t atIndex) {
  changeAndSave([&](NSMutableArray& servers) { servers.insertObject(server, atIndex); });
}

void RVFStaticServerList::removeServerAtIndex(std::size_t index) {
  changeAndSave([&](NSMutableArray& servers) { servers.removeObjectAtIndex(index); });
}

std::string RVFStaticServerList::nextUntitledServerName() const {
  std::set<std::string_view> taken;
  for (const id& server : servers_->objects()) {
    if (const auto& description = serverOf(server).serverDescription()) taken.insert(*description);
  }
  const auto bundle = NSBundle::bundleForClass(classObject());
  std::string name = bundle->localizedStringForKey("Untitled Server");
  const std::string format = bundle->localizedStringForKey("Untitled Server %lu");
  for (unsigned long number = 2; taken.contains(name); ++number)
    name = stringWithFormat(format, number);
  return name;
}

}  // namespace rvf
