// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/CFSocket.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <string>
#include <utility>

#include "Platform/Network/AcceptedDescriptor.h"
#include "Platform/Network/SocketAddress.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSException.h"

namespace rvf {
namespace {

const ClassRegistration kSocketRegistration(&CFSocket::classObject);
const ClassRegistration kSourceRegistration(&CFRunLoopSource::classObject);

constexpr int kBacklog = 256;
/// How long no connection is accepted after a failure that lasts, such as a want of descriptors.
/// The connection that waits keeps the socket readable, so trying at once would spin.
constexpr double kPauseSeconds = 1;

/// Whether an error of `accept` is that of one connection, which is out of the way with it, or of
/// none. The network's errors are those that accept(2) hands on from the protocols.
bool isPassing(int error) noexcept {
  constexpr int kPassing[] = {EAGAIN,       ECONNABORTED, EINTR,     EPROTO,
                              ENETDOWN,     ENOPROTOOPT,  EHOSTDOWN, ENONET,
                              EHOSTUNREACH, ENETUNREACH,  ETIMEDOUT};
  return std::ranges::find(kPassing, error) != std::end(kPassing);
}

/// False for a socket without address, of a kind without connections, and that was shut down: they
/// count as readable for good although there is nothing to accept.
bool isListening(int descriptor) noexcept {
  int value = 0;
  socklen_t length = sizeof value;
  return ::getsockopt(descriptor, SOL_SOCKET, SO_ACCEPTCONN, &value, &length) == 0 && value != 0;
}

const sockaddr* plain(const sockaddr_storage& storage) noexcept {
  return reinterpret_cast<const sockaddr*>(&storage);
}

Ref<NSData> blockOf(const sockaddr_storage& storage, socklen_t length) {
  const auto address = SocketAddress::fromSockaddr(plain(storage), length);
  return address ? address->dataBlock() : nullptr;
}

}  // namespace

CFSocket::CFSocket(Private, int descriptor, CFSocketCallBack callout,
                   const CFSocketContext& context)
    : descriptor_(descriptor), callout_(callout), context_(context) {}

CFSocket::~CFSocket() {
  invalidate();
}

Class CFSocket::classObject() {
  static const Class kClass =
      ClassBuilder<CFSocket>("CFSocket", NSObject::classObject()).registered();
  return kClass;
}

Class CFSocket::isa() const {
  return classObject();
}

void CFSocket::invalidate() noexcept {
  source_.reset();
  loop_.reset();
  if (const int descriptor = std::exchange(descriptor_, -1); descriptor >= 0) ::close(descriptor);
}

void CFSocket::addToRunLoop(const Ref<NSRunLoop>& loop, std::string_view mode) {
  if (descriptor_ < 0) return;
  if (loop_ && loop_ != loop) {
    NSException::raise(NSInvalidArgumentException, "the socket is in another run loop");
  }
  loop_ = loop;
  if (std::ranges::find(modes_, mode) == modes_.end()) modes_.emplace_back(mode);
  watch();
}

CFSocketError CFSocket::setAddress(const SocketAddress& address) {
  sockaddr_storage storage{};
  const auto length = static_cast<socklen_t>(address.toSockaddr(storage));
  if (::bind(descriptor_, plain(storage), length) != 0) return kCFSocketError;
  if (::listen(descriptor_, kBacklog) != 0) return kCFSocketError;
  watch();
  return kCFSocketSuccess;
}

void CFSocket::watch() {
  source_.reset();
  if (!callout_ || !loop_ || !isListening(descriptor_)) return;
  DescriptorEvents wanted;
  wanted.readable = true;
  source_ = loop_->watchDescriptor(descriptor_, wanted, modes_,
                                   [this](DescriptorEvents) { acceptConnection(); });
}

void CFSocket::pause() {
  source_ = loop_->scheduleTimer(kPauseSeconds, modes_, [this] { watch(); });
}

void CFSocket::acceptConnection() {
  sockaddr_storage peer{};
  socklen_t length = sizeof peer;
  const int connection =
      ::accept4(descriptor_, reinterpret_cast<sockaddr*>(&peer), &length, SOCK_CLOEXEC);
  if (connection < 0 && isPassing(errno)) return;
  if (connection < 0) return pause();
  const Ref<CFSocket> self = refTo(this);
  const AcceptedDescriptor accepted(connection);
  callout_(self, kCFSocketAcceptCallBack, blockOf(peer, length), accepted.pointer(), context_.info);
}

Ref<CFSocket> CFSocketCreate(int protocolFamily, int socketType, int protocol,
                             unsigned callBackTypes, CFSocketCallBack callout,
                             const CFSocketContext& context) {
  const bool isAccepting = callBackTypes == kCFSocketAcceptCallBack;
  if (!isAccepting && callBackTypes != kCFSocketNoCallBack) {
    NSException::raise(NSInvalidArgumentException, "sockets call out for connections only");
  }
  const int descriptor =
      ::socket(protocolFamily, socketType | SOCK_CLOEXEC | SOCK_NONBLOCK, protocol);
  if (descriptor < 0) return nullptr;
  return std::make_shared<CFSocket>(CFSocket::Private(), descriptor,
                                    isAccepting ? callout : nullptr, context);
}

int CFSocketGetNative(const Ref<CFSocket>& socket) {
  return socket ? socket->descriptor_ : -1;
}

CFSocketError CFSocketSetAddress(const Ref<CFSocket>& socket, const Ref<NSData>& address) {
  const auto wanted = SocketAddress::fromDataBlock(address);
  return socket && wanted ? socket->setAddress(*wanted) : kCFSocketError;
}

Ref<NSData> CFSocketCopyAddress(const Ref<CFSocket>& socket) {
  sockaddr_storage storage{};
  socklen_t length = sizeof storage;
  const bool isKnown =
      ::getsockname(CFSocketGetNative(socket), reinterpret_cast<sockaddr*>(&storage), &length) == 0;
  return isKnown ? blockOf(storage, length) : nullptr;
}

bool CFSocketIsValid(const Ref<CFSocket>& socket) {
  return CFSocketGetNative(socket) >= 0;
}

void CFSocketInvalidate(const Ref<CFSocket>& socket) {
  if (socket) socket->invalidate();
}

Ref<CFRunLoopSource> CFSocketCreateRunLoopSource(const Ref<CFSocket>& socket, long /*order*/) {
  return CFSocketIsValid(socket) ? std::make_shared<CFRunLoopSource>(socket) : nullptr;
}

void CFRunLoopAddSource(const Ref<NSRunLoop>& loop, const Ref<CFRunLoopSource>& source,
                        std::string_view mode) {
  if (loop && source) source->addToRunLoop(loop, mode);
}

CFRunLoopSource::CFRunLoopSource(Ref<CFSocket> socket) : socket_(std::move(socket)) {}
CFRunLoopSource::~CFRunLoopSource() = default;

Class CFRunLoopSource::classObject() {
  static const Class kClass =
      ClassBuilder<CFRunLoopSource>("CFRunLoopSource", NSObject::classObject()).registered();
  return kClass;
}

Class CFRunLoopSource::isa() const {
  return classObject();
}

void CFRunLoopSource::addToRunLoop(const Ref<NSRunLoop>& loop, std::string_view mode) const {
  if (socket_) socket_->addToRunLoop(loop, mode);
}

}  // namespace rvf
