// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <any>
#include <span>
#include <utility>
#include <vector>

#include "Platform/Export.h"
#include "Platform/Runtime/AnyArgument.h"
#include "Platform/Runtime/ClassRecord.h"
#include "Platform/Runtime/IMP.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// Hands a message that no method answers to the receiver's `forwardInvocation`, and returns its
/// result. Raises the unrecognized-selector exception if the receiver has no signature for it.
RVF_EXPORT std::any forwardMessage(NSObject& receiver, SEL selector,
                                   std::vector<std::any> arguments);

/// Sends a message whose arguments are known only at run time.
RVF_EXPORT std::any sendWithArguments(NSObject& receiver, SEL selector,
                                      std::span<const std::any> arguments);

/// Sends a message: looks the method up along the receiver's class chain and calls it, or
/// forwards it. `R` and the argument types are the method's own, or convert to them (see `IMP`).
/// Costs a look-up for each class of the chain until one answers. The receiver must outlive the
/// call.
///
///     const int count = send<int>(person, SEL("count"));
template <class R = void, class... Args>
R send(NSObject& receiver, SEL selector, Args&&... arguments) {
  if (const Method* method = receiver.isa()->method(selector)) {
    return method->implementation.template call<R, std::decay_t<Args>...>(
        receiver, selector, std::forward<Args>(arguments)...);
  }
  std::vector<std::any> boxed;
  boxed.reserve(sizeof...(Args));
  (boxed.push_back(toAny(std::forward<Args>(arguments))), ...);
  const std::any result = forwardMessage(receiver, selector, std::move(boxed));
  return convertedInMessage(receiver, selector, MessagePart::result,
                            [&] { return anyTo<R>(result); });
}

/// The same to a reference. An absent receiver answers absent, 0 or false. The receiver lives
/// until the method has returned.
template <class R = void, class T, class... Args>
R send(const Ref<T>& receiver, SEL selector, Args&&... arguments) {
  if (!receiver) return R();
  const Ref<T> alive = receiver;
  return send<R>(static_cast<NSObject&>(*alive), selector, std::forward<Args>(arguments)...);
}

/// Sends a message without a result whose arguments the sender keeps as they are until the method
/// has returned: a method that takes them by reference gets these very ones, not copies.
template <class... Args>
void sendByReference(NSObject& receiver, SEL selector, const Args&... arguments) {
  if (const Method* method = receiver.isa()->method(selector)) {
    method->implementation.template callByReference<void>(receiver, selector, arguments...);
  } else {
    send(receiver, selector, arguments...);  // forwards it
  }
}

}  // namespace rvf
