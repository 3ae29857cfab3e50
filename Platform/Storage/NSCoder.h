// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Runtime/IMP.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// What an object writes itself to, or reads itself from, value by value under keys of its own:
///
///     void Person::encodeWithCoder(const Ref<NSCoder>& coder) const {
///       coder->encodeObject(box(name_), "name");
///       coder->encodeInteger(visits_, "visits");
///     }
///     void Person::initWithCoder(const Ref<NSCoder>& coder) {
///       name_ = unboxText(coder->decodeObjectForKey("name")).value_or("");
///       visits_ = coder->decodeIntegerForKey("visits");
///     }
///
/// Both are methods of the class by these selectors, and it says how an instance is made:
///
///     .method<&Person::encodeWithCoder>("encodeWithCoder:")
///     .method<&Person::initWithCoder>("initWithCoder:")
///     .method("alloc", allocImplementation<Person>())
///
/// An `initWithCoder:` with a result answers the object to use, which may be another one, or absent
/// if there is none. It must expect anything: what it decodes may come from a damaged file, and an
/// object that leads back to this one may not be complete yet.
///
/// A key is used once an object; a coder that writes has no `decode…`, one that reads no `encode…`:
/// that raises the unrecognized-selector exception.
///
/// Thread: one at a time, that of the call that codes. Lifetime: of use to an object only during
/// its own coding call.
class RVF_EXPORT NSCoder : public NSObject {
 public:
  static Class classObject();
  Class isa() const override;

  /// The object with everything that it refers to; absent is kept as absent.
  virtual void encodeObject(const id& object, std::string_view forKey);
  /// The object only if it is encoded by `encodeObject` as well, now or later; else absent. For
  /// references to what the object does not own.
  virtual void encodeConditionalObject(const id& object, std::string_view forKey);
  virtual void encodeBool(bool value, std::string_view forKey);
  virtual void encodeInteger(long value, std::string_view forKey);
  virtual void encodeDouble(double value, std::string_view forKey);

  /// True for an absent object that was encoded as absent.
  virtual bool containsValueForKey(std::string_view key);
  /// Absent, 0 or false if there is no value under the key.
  virtual id decodeObjectForKey(std::string_view key);
  virtual bool decodeBoolForKey(std::string_view key);
  virtual long decodeIntegerForKey(std::string_view key);
  virtual double decodeDoubleForKey(std::string_view key);
};

namespace detail {

template <class T>
id makeInstance(NSObject&, SEL) {
  return std::make_shared<T>();
}

}  // namespace detail

/// The method `alloc` of a class whose instances can be read from a coder: one as the constructor
/// without arguments makes it. Subclasses do not inherit it.
template <class T>
IMP allocImplementation() noexcept {
  return &detail::makeInstance<T>;
}

}  // namespace rvf
