// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Runtime/Ref.h"
#include "Platform/Runtime/Selector.h"

namespace rvf {

class AssociationTable;
class ClassRecord;
class KeyValueHooks;
class NSInvocation;
class NSMethodSignature;

/// A class at run time; null for "no class". Classes live as long as the process.
using Class = ClassRecord*;

/// The root of every platform and library object.
///
/// Objects are made with `std::make_shared` or a static factory and held as `Ref`; identity is
/// the pointer. A class that wants to be known to the runtime defines a static `classObject()`
/// with `ClassBuilder` and returns it from `isa()`; any other class answers as its nearest
/// described ancestor.
///
/// Equality and hash are by identity unless a class says otherwise.
///
/// Thread: one at a time, unless the class says otherwise; references themselves may be copied and
/// dropped on any. Lifetime: until the last `Ref` goes; the destructor runs on the thread that lets
/// it go.
class RVF_EXPORT NSObject : public std::enable_shared_from_this<NSObject> {
 public:
  NSObject() = default;
  NSObject(const NSObject&) = delete;
  NSObject& operator=(const NSObject&) = delete;
  virtual ~NSObject();

  static Class classObject();
  /// The class of this object.
  virtual Class isa() const;

  /// By the class that `isa` answers and, but for `isMemberOfClass`, its ancestors.
  virtual bool isKindOfClass(Class aClass) const;
  virtual bool isMemberOfClass(Class aClass) const;
  virtual bool conformsToProtocol(std::string_view protocolName) const;
  virtual bool respondsToSelector(SEL selector) const;

  /// Whether `other`, which may be absent, stands for the same value. Equal objects hash alike.
  virtual bool isEqual(const NSObject* other) const;
  virtual std::size_t hash() const;

  /// Text for people who debug: "<Class: 0x…>" unless a class says more.
  virtual std::string description() const;

  /// The signature of the method that answers `selector`, or absent. A class that forwards
  /// messages answers the signature of what it forwards to.
  virtual Ref<NSMethodSignature> methodSignatureForSelector(SEL selector) const;

  /// Called with a message that no method answers but that has a signature. The default raises
  /// as `doesNotRecognizeSelector` does.
  virtual void forwardInvocation(NSInvocation& invocation);

  /// Raises `NSInvalidArgumentException`,
  /// "-[Class selector]: unrecognized selector sent to instance 0x…".
  [[noreturn]] void doesNotRecognizeSelector(SEL selector) const;

 private:
  friend class AssociationTable;
  friend class KeyValueHooks;
  mutable std::atomic<bool> hasAssociations_{false};
  mutable std::atomic<bool> isObserved_{false};
};

/// The receiver as a `Ref` of its own class. It must be held by a `Ref` already, else
/// `std::bad_weak_ptr` is thrown; a constructor is too early.
template <class T>
Ref<T> refTo(T* object) {
  return std::static_pointer_cast<T>(object->shared_from_this());
}

/// Whether both are absent or both stand for the same value.
RVF_EXPORT bool objectsAreEqual(const id& a, const id& b);

}  // namespace rvf
