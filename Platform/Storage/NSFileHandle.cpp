// SPDX-License-Identifier: Apache-2.0
#include "Platform/Storage/NSFileHandle.h"

#include <errno.h>
#include <unistd.h>

#include <algorithm>
#include <system_error>
#include <utility>
#include <vector>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSException.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSFileHandle::classObject);

/// How many bytes could be read; 0 at the end.
std::size_t readSome(int descriptor, std::byte* buffer, std::size_t length) {
  while (true) {
    const ssize_t count = ::read(descriptor, buffer, length);
    if (count >= 0) return static_cast<std::size_t>(count);
    const int problem = errno;
    if (problem == EINTR) continue;
    NSException::raise(NSFileHandleOperationException,
                       "reading failed: " + std::generic_category().message(problem));
  }
}

}  // namespace

Ref<NSFileHandle> NSFileHandle::initWithFileDescriptor(int descriptor) {
  return initWithFileDescriptor(descriptor, false);
}

Ref<NSFileHandle> NSFileHandle::initWithFileDescriptor(int descriptor, bool closeOnDealloc) {
  return Ref<NSFileHandle>(new NSFileHandle(descriptor, closeOnDealloc));
}

NSFileHandle::~NSFileHandle() {
  if (isOwner_) ::close(descriptor_);
}

Class NSFileHandle::classObject() {
  static const Class kClass = ClassBuilder<NSFileHandle>("NSFileHandle", NSObject::classObject())
                                  .property("fileDescriptor", "Ti,R,N")
                                  .method<&NSFileHandle::fileDescriptor>("fileDescriptor")
                                  .method<&NSFileHandle::readDataOfLength>("readDataOfLength:")
                                  .registered();
  return kClass;
}

Class NSFileHandle::isa() const {
  return classObject();
}

Ref<NSData> NSFileHandle::readDataOfLength(std::size_t length) {
  constexpr std::size_t kStep = std::size_t{1} << 20;  // memory for what may never come
  std::vector<std::byte> bytes;
  std::size_t filled = 0;
  while (filled < length) {
    if (filled == bytes.size()) bytes.resize(std::min(length, std::max(kStep, 2 * filled)));
    const std::size_t count = readSome(descriptor_, bytes.data() + filled, bytes.size() - filled);
    if (count == 0) break;
    filled += count;
  }
  bytes.resize(filled);
  return std::make_shared<NSData>(std::move(bytes));
}

}  // namespace rvf
