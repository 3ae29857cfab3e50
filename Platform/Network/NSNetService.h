// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Values/NSData.h"
#include "Platform/Values/NSDictionary.h"

namespace rvf {

class NSNetService;

/// What a service tells its delegate, on the run loop of the thread that started the operation.
/// Override what you need; the rest is skipped. Failure dictionaries carry
/// `NSNetServicesErrorCode` and `NSNetServicesErrorDomain`.
///
/// Thread: that of the operation. Lifetime: not owned by the service; may drop it, and itself, in
/// any of these.
class RVF_EXPORT NSNetServiceDelegate {
 public:
  virtual ~NSNetServiceDelegate();
  virtual void netServiceWillResolve(const Ref<NSNetService>& service);
  virtual void netServiceDidResolveAddress(const Ref<NSNetService>& service);
  virtual void netServiceDidNotResolve(const Ref<NSNetService>& service,
                                       const Ref<NSDictionary>& errorDict);
  virtual void netServiceDidStop(const Ref<NSNetService>& service);
  virtual void netServiceDidUpdateTXTRecordData(const Ref<NSNetService>& service,
                                                const Ref<NSData>& data);
  virtual void netServiceWillPublish(const Ref<NSNetService>& service);
  virtual void netServiceDidPublish(const Ref<NSNetService>& service);
  virtual void netServiceDidNotPublish(const Ref<NSNetService>& service,
                                       const Ref<NSDictionary>& errorDict);
};

/// One DNS-SD registration (RFC 6763), found by a browser or to be published by this process.
///
/// Two are equal when name, type and domain are; type and domain carry their final dot. The
/// delegate is not owned and is read when a callback is delivered. Operations belong to the
/// thread that starts them and report on its run loop; `netServiceDidStop` alone is delivered
/// inside `stop`. An object that its delegate releases during a callback survives the callback.
///
/// `name`, `hostName`, `port`, `addresses` and `TXTRecordData` can be observed by key. What is
/// found on the network changes them on that run loop, too, just before the delegate is told of it;
/// what waited there when the operation was stopped does not change them any more.
///
/// Thread: that of the operations under way, which also lets the last reference go. Lifetime: its
/// end ends operations untold; what was queued for the delegate is dropped by it and by `stop`.
class RVF_EXPORT NSNetService final : public NSObject {
 public:
  /// For browsing and resolving. A missing final dot is added to type and domain.
  static Ref<NSNetService> initWithDomain(std::string_view domain, std::string_view type,
                                          std::string_view name);
  /// For publishing on `port`. An empty name is the host's own, an empty domain the default one.
  static Ref<NSNetService> initWithDomain(std::string_view domain, std::string_view type,
                                          std::string_view name, std::uint16_t port);
  ~NSNetService() override;

  static Class classObject();
  Class isa() const override;

  /// As given or found; the name also changes when it is published under another because it was
  /// taken.
  std::string name() const;
  std::string type() const;
  std::string domain() const;
  /// -1 until it was resolved, or the port to publish on.
  int port() const;
  /// The host that offers the service; absent until it was resolved.
  std::optional<std::string> hostName() const;
  /// The resolved socket addresses, BSD layout, one data block each; empty until resolved.
  std::vector<Ref<NSData>> addresses() const;
  /// The latest TXT record seen or set; absent if none.
  Ref<NSData> TXTRecordData() const;
  /// Sets the record to publish; absent publishes one zero byte. A published record is updated.
  void setTXTRecordData(Ref<NSData> data);

  /// Says before publishing that nobody else can have the name, so that it is announced at once,
  /// about 0.7 s earlier. An empty name then is the host's with 80 random bits behind it,
  /// "Till-5xq0c7k1m9b2h4wz", which no other and no former publication has.
  void setNameIsUnique(bool isUnique);
  /// Seconds that other hosts keep the published records when this process dies; 120 unless set.
  void setRecordLifetime(std::uint32_t seconds);

  /// Not owned: absent once it is gone.
  std::shared_ptr<NSNetServiceDelegate> delegate() const;
  void setDelegate(std::weak_ptr<NSNetServiceDelegate> delegate);

  /// Finds host, port and addresses, until stopped. Seconds; 0 or less: no limit. Reports
  /// `WillResolve`, then `DidResolveAddress` each time the list has grown, or `DidNotResolve` with
  /// -72007 when the time is up before an address came, -72003 if this service is busy already.
  void resolveWithTimeout(double seconds);
  /// Delivers the TXT record once known and after every change, until `stopMonitoring`.
  void startMonitoring();
  void stopMonitoring();
  /// Announces the registration; on a conflict as "Name (2)", "Name (3)" and so on, which `name`
  /// then answers. Reports `WillPublish`, then `DidPublish` or `DidNotPublish`.
  void publish();
  /// Ends resolving or publishing, with `netServiceDidStop` before it returns; idle: nothing.
  /// Monitoring goes on.
  void stop();

  /// Decodes a TXT record (RFC 6763, 6.3 to 6.5): keys to data, a key without "=" to `NSNull`.
  /// The first of several equal keys counts; keys keep their case. Absent for no bytes.
  static Ref<NSDictionary> dictionaryFromTXTRecordData(const Ref<NSData>& data);
  /// Encodes texts, data and `NSNull` in the order of the keys by UTF-16 code unit. Absent if an
  /// entry does not fit 255 bytes.
  static Ref<NSData> dataFromTXTRecordDictionary(const Ref<NSDictionary>& dictionary);

  bool isEqual(const NSObject* other) const override;
  std::size_t hash() const override;
  std::string description() const override;

 private:
  class Core;
  struct Private {};

 public:
  explicit NSNetService(Private);

 private:
  std::shared_ptr<Core> core_;
};

}  // namespace rvf
