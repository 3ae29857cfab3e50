// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Runtime/Runtime.h"
#include "Platform/Values/NSString.h"

/// What a class declares of a property, read from the runtime's attribute string
/// (`T@"NSString",C,N,V_title`) into a record, and the property that an accessor belongs to.
///
/// Nothing is kept between calls: a property that was added to a class meanwhile is found. The
/// functions may be called on any thread. A malformed attribute string is a programming error that
/// stops the process, because no accessor of such a class could be trusted.
namespace rvf {

/// A declared property.
///
/// Thread: any, a plain value. Lifetime: owns its texts.
struct RVFPropertyInfo {
  /// A text of at most 64 bytes, kept in place and filled up with zero bytes. One of exactly 64
  /// bytes has no terminator: read it by `view`.
  class Text final {
   public:
    static constexpr std::size_t kCapacity = 64;

    constexpr Text() noexcept = default;
    /// Cut at the capacity, and read up to the first zero byte like every name of the runtime.
    RVF_EXPORT explicit Text(std::string_view text) noexcept;

    /// Up to the first zero byte; lives as long as the text.
    RVF_EXPORT std::string_view view() const noexcept;
    operator std::string_view() const noexcept { return view(); }  // NOLINT: reads as text
    bool empty() const noexcept { return characters_.front() == '\0'; }
    /// The first character; a zero byte if there is none.
    char front() const noexcept { return characters_.front(); }
    /// All 64 bytes.
    const char* data() const noexcept { return characters_.data(); }

   private:
    std::array<char, kCapacity> characters_{};
  };

  /// Only `RVFPropertyInfoForSelector` fills it in; absent otherwise.
  Ref<NSString> name;
  /// The type encoding, for example `@"NSString"`, `i`, `d`, `c`.
  Text type;
  /// The `G` attribute, or else the property's name.
  Text getter;
  /// The `S` attribute, or else "setName:" made from the name, of which no more than 63 bytes are
  /// kept; empty for a read-only property without `S`.
  Text setter;
  /// The instance variable behind it; empty if there is none.
  Text ivar;
  bool readonly = false;
  bool copy = false;
  bool retain = false;
  bool nonatomic = false;
  bool dynamic = false;
  bool weak = false;
  /// Neither `retain` nor `copy`, whatever else is set.
  bool assign = false;
  bool collectable = false;
};

/// The record of a property, without `name`. An unknown attribute letter, or a value of more than
/// 64 bytes, is a fatal assertion.
RVF_EXPORT RVFPropertyInfo RVFParsePropertyAttributes(const Property& property);

/// Finds the property that has `selector` as getter or setter: the first in the order of the
/// class's list, then of its ancestors. False, and `outInfo` untouched, if there is none. A null
/// `outInfo` is a fatal assertion.
RVF_EXPORT bool RVFPropertyInfoForSelector(Class aClass, SEL selector, RVFPropertyInfo* outInfo);

/// Finds a property of the class or an ancestor whose *getter* is called `name`: one with a getter
/// of its own (`GisEnabled`) is found by that and not by the property's name. `outInfo` may be
/// null.
RVF_EXPORT bool RVFPropertyInfoForPropertyOfClass(Class aClass, std::string_view name,
                                                  RVFPropertyInfo* outInfo);

/// The class in a type encoding: `@"NSString"` and `@"NSString<NSCopying>"` give that of texts.
/// Null for every other encoding, for a class that is not known, and where only a protocol is
/// named.
RVF_EXPORT Class RVFGetPropertyClassFromPropertyInfoType(std::string_view type);

}  // namespace rvf
