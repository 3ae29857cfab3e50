// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Platform/Export.h"
#include "Platform/Network/NSNetServicesError.h"

/// The seam between `NSNetService`/`NSNetServiceBrowser` and whatever speaks DNS-SD (RFC 6763) for
/// them. A back end reports what it sees, raw: one event for each interface and protocol. Merging,
/// time-outs, renaming and delegates are the business of the callers above the seam, once for all
/// back ends.
///
/// Every operation belongs to the thread that starts it and reports on that thread's run loop, in
/// the common modes, never before the starting call has returned. Destroying the returned activity
/// ends it: no event arrives afterwards, also when it is destroyed inside one of its own events.
/// No call blocks.
namespace rvf {

/// What a registration is known by. Type and domain carry their final dot: "_quillmarsh._tcp.",
/// "local.". The name is plain UTF-8, unescaped, at most 63 bytes.
///
/// Thread: any, a plain value. Lifetime: owns its texts.
struct ServiceIdentity {
  std::string name;
  std::string type;
  std::string domain;
  friend auto operator<=>(const ServiceIdentity&, const ServiceIdentity&) = default;
};

/// Where a registration was seen.
///
/// Thread: any, a plain value. Lifetime: refers to nothing.
struct ServiceLink {
  int interfaceIndex = 0;
  int family = 0;  ///< AF_INET or AF_INET6: the protocol that carried the answer
  friend auto operator<=>(const ServiceLink&, const ServiceLink&) = default;
};

/// An operation under way; destroying it ends it.
///
/// Thread: the one that started it. Lifetime: owned by whoever started it; may be destroyed in its
/// own events, after which none comes.
class RVF_EXPORT DiscoveryActivity {
 public:
  DiscoveryActivity() = default;
  DiscoveryActivity(const DiscoveryActivity&) = delete;
  DiscoveryActivity& operator=(const DiscoveryActivity&) = delete;
  virtual ~DiscoveryActivity();
};

/// What browsing reports.
///
/// Thread: called on the run loop of the thread that started the activity. Lifetime: owned by the
/// activity; never called after its end.
struct BrowseEvents {
  /// Once for each link that shows the registration, and once when that no longer does.
  std::function<void(const ServiceIdentity&, ServiceLink)> found;
  std::function<void(const ServiceIdentity&, ServiceLink)> removed;
  /// All that is known for now has been reported.
  std::function<void()> settled;
  /// The responder was lost. What was found is unconfirmed: all of it is reported again before
  /// the next `settled`, and what is not has gone. The activity goes on by itself.
  std::function<void()> interrupted;
  /// The browsing cannot be carried out; nothing more follows.
  std::function<void(NSNetServicesError)> failed;
};

/// What the watching of a TXT record reports.
///
/// Thread: called on the run loop of the thread that started the activity. Lifetime: owned by the
/// activity; never called after its end.
struct TXTRecordEvents {
  /// The record's raw bytes in wire order, now or after a change; removals are not reported.
  std::function<void(std::vector<std::byte>)> updated;
  std::function<void(NSNetServicesError)> failed;
};

/// One address of the host that offers a service: a BSD-layout socket address block with the
/// service's port, link-local IPv6 ones with their scope.
using SocketAddressBytes = std::vector<std::byte>;

/// What a resolution reports.
///
/// Thread: called on the run loop of the thread that started the activity. Lifetime: owned by the
/// activity; never called after its end.
struct ResolveEvents {
  /// The host and port are known; its addresses follow.
  std::function<void(const std::string& hostName, std::uint16_t port)> located;
  std::function<void(const SocketAddressBytes&)> addressFound;
  std::function<void(NSNetServicesError)> failed;
};

/// What is to be published.
///
/// Thread: any, a plain value. Lifetime: owns its texts and record.
struct Publication {
  ServiceIdentity identity;  ///< an empty domain is the default one
  std::uint16_t port = 0;
  std::vector<std::byte> txtRecord;  ///< wire form; empty publishes one zero byte
  /// The name is known to be unique, so it is announced without probing where that is possible.
  /// A collision all the same is reported as any other.
  bool isUnique = false;
  /// Seconds that other hosts keep the records without hearing of them again.
  std::uint32_t lifetimeSeconds = 120;
};

/// What a publication reports.
///
/// Thread: called on the run loop of the thread that started the activity. Lifetime: owned by the
/// activity; never called after its end.
struct PublishEvents {
  /// The records are announced; said again after a lost responder came back.
  std::function<void()> established;
  /// Somebody else has the name, now or later. The publication is withdrawn; the caller publishes
  /// again under another name.
  std::function<void()> collided;
  std::function<void(NSNetServicesError)> failed;
};

/// A publication under way.
///
/// Thread: the one that started it. Lifetime: destroying it takes the registration back.
class RVF_EXPORT PublishActivity : public DiscoveryActivity {
 public:
  ~PublishActivity() override;
  /// Replaces the TXT record (wire form; empty publishes one zero byte). Who watches the record
  /// sees the new one; the registration itself is not withdrawn. Also while it is not yet
  /// established.
  virtual void updateTXTRecord(std::vector<std::byte> txtRecord) = 0;
};

/// A way to speak DNS-SD, for one thread.
///
/// Thread: one, whose run loop drives it. Lifetime: who starts activities keeps it as long as they
/// last.
class RVF_EXPORT ServiceDiscoveryBackend {
 public:
  ServiceDiscoveryBackend() = default;
  ServiceDiscoveryBackend(const ServiceDiscoveryBackend&) = delete;
  ServiceDiscoveryBackend& operator=(const ServiceDiscoveryBackend&) = delete;
  virtual ~ServiceDiscoveryBackend();

  /// Looks for registrations of a type in one domain ("local."), or in every default browsing
  /// domain if it is empty.
  virtual std::unique_ptr<DiscoveryActivity> browse(const std::string& type,
                                                    const std::string& domain,
                                                    BrowseEvents events) = 0;
  virtual std::unique_ptr<DiscoveryActivity> watchTXTRecord(const ServiceIdentity& identity,
                                                            TXTRecordEvents events) = 0;
  /// Goes on until destroyed: new addresses are reported as they come. No time-out of its own.
  virtual std::unique_ptr<DiscoveryActivity> resolve(const ServiceIdentity& identity,
                                                     ResolveEvents events) = 0;
  virtual std::unique_ptr<PublishActivity> publish(const Publication& publication,
                                                   PublishEvents events) = 0;

  /// Whether somebody is there to be asked now: a daemon that answers, a stack that has started.
  /// Activities wait until it is so; this tells why nothing comes of them.
  virtual bool isResponding() const { return true; }

  /// The name that a registration without one gets: the host's pretty name or its host name.
  virtual std::string defaultServiceName() = 0;
};

}  // namespace rvf
