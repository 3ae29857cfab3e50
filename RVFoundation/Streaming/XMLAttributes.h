// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace rvf {

/// A zero-terminated UTF-8 text that belongs to the XML parser: valid only during the callback
/// that hands it over. Null for "absent".
using XMLText = const unsigned char*;

/// The text in place, empty for an absent one. Copies nothing.
inline std::string_view xmlView(XMLText text) noexcept {
  return text ? std::string_view(reinterpret_cast<const char*>(text)) : std::string_view();
}

/// One attribute of an element start, read in place. Valid only during the callback.
///
/// Thread: that of the callback. Lifetime: the callback; refers to the parser's texts.
class XMLAttribute final {
 public:
  /// `group` is five texts: local name, prefix, URI, start and end of the value.
  explicit XMLAttribute(const XMLText* group) noexcept : group_(group) {}

  /// Empty for an absent prefix or URI.
  std::string_view localName() const noexcept { return xmlView(group_[0]); }
  std::string_view prefix() const noexcept { return xmlView(group_[1]); }
  std::string_view URI() const noexcept { return xmlView(group_[2]); }

  /// The value as the parser keeps it: references are resolved, except that an ampersand reads
  /// "&#38;". Use `decodedValue` where a value may hold one.
  std::string_view value() const noexcept {
    return {reinterpret_cast<const char*>(group_[3]),
            static_cast<std::size_t>(group_[4] - group_[3])};
  }

  /// The value with its ampersands: "Salt &#38; Pepper" reads "Salt & Pepper".
  std::string decodedValue() const {
    constexpr std::string_view kAmpersand = "&#38;";
    std::string_view rest = value();
    std::string text;
    text.reserve(rest.size());
    for (auto at = rest.find(kAmpersand); at != rest.npos; at = rest.find(kAmpersand)) {
      text.append(rest.substr(0, at)).append(1, '&');
      rest.remove_prefix(at + kAmpersand.size());
    }
    return text.append(rest);
  }

 private:
  const XMLText* group_;
};

/// The attributes of an element start, made from the last arguments of a start handler:
///
///     for (const XMLAttribute attribute : XMLAttributes(attributes, attributeCount)) ...
///
/// Costs nothing: a view over the parser's own strings, valid only during the callback.
///
/// Thread: that of the callback. Lifetime: the callback; refers to the parser's texts.
class XMLAttributes final {
 public:
  class Iterator final {
   public:
    explicit Iterator(const XMLText* group) noexcept : group_(group) {}
    XMLAttribute operator*() const noexcept { return XMLAttribute(group_); }
    Iterator& operator++() noexcept {
      group_ += kTextsPerAttribute;
      return *this;
    }
    bool operator==(const Iterator&) const noexcept = default;

   private:
    const XMLText* group_;
  };

  XMLAttributes(const XMLText* groups, std::int32_t count) noexcept
      : groups_(groups), count_(count > 0 ? static_cast<std::size_t>(count) : 0) {}

  /// Attributes, of five texts each.
  std::size_t count() const noexcept { return count_; }
  Iterator begin() const noexcept { return Iterator(groups_); }
  Iterator end() const noexcept { return Iterator(groups_ + count_ * kTextsPerAttribute); }

  /// The first attribute of that local name, in whatever namespace.
  std::optional<XMLAttribute> attributeNamed(std::string_view localName) const noexcept {
    for (const XMLAttribute attribute : *this) {
      if (attribute.localName() == localName) return attribute;
    }
    return std::nullopt;
  }

 private:
  static constexpr std::size_t kTextsPerAttribute = 5;

  const XMLText* groups_;
  std::size_t count_;
};

}  // namespace rvf
