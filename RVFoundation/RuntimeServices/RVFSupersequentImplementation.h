// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Platform/Export.h"
#include "Platform/Runtime/IMP.h"
#include "Platform/Runtime/NSObject.h"

/// How a method that an extension put before another of the same class calls the one that it
/// replaced, which is no superclass's:
///
///     long countTwice(NSObject& self, SEL selector) {
///       const IMP own = RVF_ImpOfCallingMethod(&self, selector);
///       const IMP next = RVF_getImplementationOf(&self, selector, own);
///       return next ? 2 * next.call<long>(self, selector) : 0;
///     }
namespace rvf {

/// The implementation of `selector` that is running for the receiver on this thread: that of the
/// method which calls this. Null if none is, or for an absent receiver. Only calls by message or
/// `IMP` count; a member function that C++ called directly is not seen.
RVF_EXPORT IMP RVF_ImpOfCallingMethod(const NSObject* receiver, SEL selector);

/// The implementation of `selector` that a message would reach if `after` and all before it were
/// gone: next in the class's own list, or else in an ancestor's. Null if `after` is the last one or
/// belongs to no method of the selector, or for an absent receiver.
RVF_EXPORT IMP RVF_getImplementationOf(const NSObject* receiver, SEL selector, IMP after);

}  // namespace rvf
