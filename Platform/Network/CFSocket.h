// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Values/NSData.h"

/// Listening sockets as items of a run loop.
///
/// Make one, give it an address, which binds it and makes it listen, and add its source to a run
/// loop, in either order: from then on each connection is accepted there and handed to the callout.
/// An absent socket is taken for an invalid one; an absent source or run loop does nothing.
namespace rvf {

class CFSocket;
class SocketAddress;

/// What a socket calls out for.
enum CFSocketCallBackType : unsigned {
  kCFSocketNoCallBack = 0,
  kCFSocketReadCallBack = 1,    ///< told by no socket of this kind
  kCFSocketAcceptCallBack = 2,  ///< a connection was accepted
};

enum CFSocketError : long { kCFSocketSuccess = 0, kCFSocketError = -1 };

/// For an accept event `address` is the peer's, in BSD layout, and `data` points to the `int` that
/// is the descriptor of the connection, which is the callout's to close. It blocks, and is closed
/// on exec. Called on the run loop; may invalidate the socket, drop it, and throw.
using CFSocketCallBack = void (*)(const Ref<CFSocket>& socket, CFSocketCallBackType type,
                                  const Ref<NSData>& address, const void* data, void* info);

/// What a socket hands to its callout.
///
/// Thread: any, a plain value. Lifetime: what `info` points to is the caller's, and must live as
/// long as the socket is valid.
struct CFSocketContext {
  long version = 0;      ///< the only one
  void* info = nullptr;  ///< handed to the callout; not owned
};

/// A socket and, while it is valid, its descriptor, which ends with it.
///
/// Thread: one, that of its run loop. Lifetime: owns the descriptor until it is invalidated or let
/// go; may be let go in its callout.
class RVF_EXPORT CFSocket final : public NSObject {
 public:
  ~CFSocket() override;
  static Class classObject();
  Class isa() const override;

 private:
  friend RVF_EXPORT Ref<CFSocket> CFSocketCreate(int, int, int, unsigned, CFSocketCallBack,
                                                 const CFSocketContext&);
  friend RVF_EXPORT int CFSocketGetNative(const Ref<CFSocket>&);
  friend RVF_EXPORT CFSocketError CFSocketSetAddress(const Ref<CFSocket>&, const Ref<NSData>&);
  friend RVF_EXPORT void CFSocketInvalidate(const Ref<CFSocket>&);
  friend class CFRunLoopSource;
  struct Private {};

 public:
  CFSocket(Private, int descriptor, CFSocketCallBack callout, const CFSocketContext& context);

 private:
  void addToRunLoop(const Ref<NSRunLoop>& loop, std::string_view mode);
  CFSocketError setAddress(const SocketAddress& address);
  void watch();
  void pause();
  void acceptConnection();
  void invalidate() noexcept;

  int descriptor_;  ///< -1: invalid
  const CFSocketCallBack callout_;
  const CFSocketContext context_;
  Ref<NSRunLoop> loop_;
  RunLoopModes modes_;
  std::unique_ptr<RunLoopSource> source_;
};

/// A socket as something that can be added to a run loop.
///
/// Thread: that of the run loop. Lifetime: keeps the socket; the run loop keeps neither.
class RVF_EXPORT CFRunLoopSource final : public NSObject {
 public:
  explicit CFRunLoopSource(Ref<CFSocket> socket);
  ~CFRunLoopSource() override;
  static Class classObject();
  Class isa() const override;

  /// What `CFRunLoopAddSource` does, which see.
  void addToRunLoop(const Ref<NSRunLoop>& loop, std::string_view mode) const;

 private:
  const Ref<CFSocket> socket_;
};

/// A socket that calls out for connections (`kCFSocketAcceptCallBack`) or for nothing. Absent if
/// the system gives none. Raises `NSInvalidArgumentException` for other callout types.
RVF_EXPORT Ref<CFSocket> CFSocketCreate(int protocolFamily, int socketType, int protocol,
                                        unsigned callBackTypes, CFSocketCallBack callout,
                                        const CFSocketContext& context);
/// The descriptor, for `setsockopt`; -1 once invalid. Stays the socket's.
RVF_EXPORT int CFSocketGetNative(const Ref<CFSocket>& socket);
/// Binds to an address block (BSD layout; port 0 is any free one) and listens.
RVF_EXPORT CFSocketError CFSocketSetAddress(const Ref<CFSocket>& socket,
                                            const Ref<NSData>& address);
/// The address that the socket is bound to, in BSD layout; absent once invalid.
RVF_EXPORT Ref<NSData> CFSocketCopyAddress(const Ref<CFSocket>& socket);
RVF_EXPORT bool CFSocketIsValid(const Ref<CFSocket>& socket);
/// Closes the descriptor and takes the socket out of its run loop. Connections that were accepted
/// stay. Again: nothing.
RVF_EXPORT void CFSocketInvalidate(const Ref<CFSocket>& socket);

/// `order` is that among the sources of a turn; run loops here promise none. Absent once invalid.
RVF_EXPORT Ref<CFRunLoopSource> CFSocketCreateRunLoopSource(const Ref<CFSocket>& socket,
                                                            long order);
/// Accepts connections while the socket listens and the loop, which must be the calling thread's,
/// runs in the mode. The loop keeps neither source nor socket: the socket leaves it when it is
/// invalidated or let go. A source may be in several modes of one loop, and is in each once; a
/// second loop raises `NSInvalidArgumentException`. After failures to accept that last, such as a
/// want of descriptors, it is tried again each second.
RVF_EXPORT void CFRunLoopAddSource(const Ref<NSRunLoop>& loop, const Ref<CFRunLoopSource>& source,
                                   std::string_view mode);

}  // namespace rvf
