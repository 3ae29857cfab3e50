// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"

/// Key-value coding: reads and writes what an object has under a name that is known only at run
/// time.
///
///     setValueForKey(*person, box("Ada"), "name");
///     const id street = valueForKeyPath(*person, "address.street");
///
/// These functions send messages (`valueForKey:`, `setValue:forKey:`, ...) that every object
/// answers, so a class may answer them otherwise and a proxy passes them on.
///
/// A value is read by the first of the methods `get<Key>`, `<key>`, `is<Key>`, `_<key>`, else from
/// the first of the variables `_<key>`, `_is<Key>`, `<key>`, `is<Key>` that its class describes
/// with access. It is written by the first of `set<Key>:`, `_set<Key>:`, else to the first of the
/// same variables. Where there is none of these, the accessors count that the property of this name
/// declares (`G`, `S`). `<Key>` is the key with its first ASCII letter in upper case. Scalars come
/// and go as `NSNumber`s of their type code (`c` is a flag), records as `NSValue`s, text as
/// `NSString`s, blocks, also empty ones, as opaque objects. Pointers, selectors and classes have no
/// object form, so what reads or takes them does not count. A text given for a scalar is read as a
/// number; an object without such a reading raises the unrecognized-selector exception, one of
/// another class than the accessor takes `NSInvalidArgumentException`.
///
/// The key "self" leads to the receiver itself. Collections answer otherwise: a dictionary its
/// entry, absent if it has none, and a mutable one sets or, for an absent value, removes it; an
/// array or set those of its elements' values, absent ones as `NSNull` in an array and left out in
/// a set; and it passes values to set on to each element. `NSNull` answers itself to every key, so
/// that arrays can be walked further.
namespace rvf {

inline constexpr std::string_view NSUndefinedKeyException = "NSUndefinedKeyException";

/// The value; absent is a value, too. For a key without accessor the receiver is sent
/// `valueForUndefinedKey:`, which raises `NSUndefinedKeyException` unless its class overrides it.
RVF_EXPORT id valueForKey(NSObject& receiver, std::string_view key);
/// An absent receiver answers absent.
RVF_EXPORT id valueForKey(const id& receiver, std::string_view key);

/// For a key without accessor the receiver is sent `setValue:forUndefinedKey:`, which raises
/// `NSUndefinedKeyException`; for an absent value of a scalar key `setNilValueForKey:`, which
/// raises `NSInvalidArgumentException`.
///
/// Observers are told of the change exactly once, whether or not the setter announces it itself.
RVF_EXPORT void setValueForKey(NSObject& receiver, const id& value, std::string_view key);
RVF_EXPORT void setValueForKey(const id& receiver, const id& value, std::string_view key);

/// Follows the keys between the points of `keyPath`; absent at the first absent link.
RVF_EXPORT id valueForKeyPath(NSObject& receiver, std::string_view keyPath);
RVF_EXPORT id valueForKeyPath(const id& receiver, std::string_view keyPath);

/// Sets the last key of the path at the object that the others lead to; does nothing if a link is
/// absent.
RVF_EXPORT void setValueForKeyPath(NSObject& receiver, const id& value, std::string_view keyPath);
RVF_EXPORT void setValueForKeyPath(const id& receiver, const id& value, std::string_view keyPath);

}  // namespace rvf
