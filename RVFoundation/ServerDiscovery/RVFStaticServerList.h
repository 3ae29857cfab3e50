// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Storage/NSUserDefaults.h"
#include "Platform/Values/NSMutableArray.h"
#include "RVFoundation/ServerDiscovery/RVFStaticServer.h"

namespace rvf {

/// Where user defaults keep the list: an array of the servers' records, see
/// `RVFStaticServer::dataDictionary`.
inline constexpr std::string_view kStaticServersKey = "static servers";

/// The servers that the user entered by hand, in their order, kept in user defaults: read once at
/// the beginning, written as a whole after every change.
///
///     const auto list = RVFStaticServerList::sharedServerList();
///     const auto server = RVFStaticServer::staticServerWithAddress("till.example:8080");
///     server->setServerDescription(list->nextUntitledServerName());
///     list->addServer(server);
///
/// Nothing is checked for being in the list already. Whether a change was written is what the
/// defaults answer to `synchronize`; if not, the list here keeps it. Between processes the whole
/// list counts: the later writer's. To change what another process may be changing too, load and
/// change it within `NSUserDefaults::performExclusively`.
///
/// Belongs to the main thread, but `sharedServerList` may be asked for from any.
///
/// Thread: the main one. Lifetime: keeps its servers and defaults; the shared one lives as long as
/// the process.
class RVF_EXPORT RVFStaticServerList final : public NSObject {
 public:
  /// The one on the standard user defaults, made and loaded on first use.
  static Ref<RVFStaticServerList> sharedServerList();

  /// Loads the list of these defaults, by default the standard ones.
  explicit RVFStaticServerList(
      Ref<NSUserDefaults> defaults = NSUserDefaults::standardUserDefaults());

  static Class classObject();
  Class isa() const override;

  /// Drops the list and reads it from the defaults again. What stands there is not checked: a value
  /// that is no array reads as none, an element that is no record as a server without properties.
  void load();
  /// Stores the list, as an empty array if there is no server, and writes the defaults through.
  void save();

  /// In constant time.
  std::size_t serverCount() const noexcept { return servers_->count(); }
  /// Raises `NSRangeException` past the end.
  Ref<RVFStaticServer> serverAtIndex(std::size_t index) const;
  /// The first position of an equal server, one with the same `serverId`, or `NSNotFound`. Linear
  /// in the number of servers.
  std::size_t indexOfServer(const Ref<RVFStaticServer>& server) const;
  /// The first server with exactly this `serverId`, absent if there is none. Linear in the number
  /// of servers.
  Ref<RVFStaticServer> serverForServerId(std::string_view serverId) const;
  /// The same by description, letter case counting.
  Ref<RVFStaticServer> serverWithServerDescription(std::string_view description) const;

  /// Each saves at once. An absent server raises `NSInvalidArgumentException`, as do equal texts of
  /// many megabytes in all, which defaults refuse; an index past the end (for insertion: behind the
  /// end) raises `NSRangeException`. The list is then as before. A text that is not UTF-8, set now
  /// or later, keeps no server from being saved: bytes that are none are stored as U+FFFD, see
  /// `RVFStaticServer::dataDictionary`, and are that after the next `load`.
  void addServer(const Ref<RVFStaticServer>& server);
  void insertServer(const Ref<RVFStaticServer>& server, std::size_t atIndex);
  void removeServerAtIndex(std::size_t index);

  /// "Untitled Server" in the user's language, or if a server has this description, the first of
  /// "Untitled Server 2", 3, … that none has. Linear in the number of servers.
  std::string nextUntitledServerName() const;

 private:
  void replaceServers(const NSArray& servers);
  void changeAndSave(const std::function<void(NSMutableArray&)>& change);
  const Ref<NSUserDefaults> defaults_;
  const Ref<NSMutableArray> servers_ = NSMutableArray::array();
};

}  // namespace rvf
