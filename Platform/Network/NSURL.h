// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// A URL (RFC 3986), or a reference relative to another URL. The text is kept letter for letter;
/// nothing is normalized.
///
/// The parts are those of the absolute form. Where a part is answered decoded, it is absent if its
/// escapes do not decode to UTF-8.
///
/// Thread: any; immutable. Lifetime: keeps its base.
class RVF_EXPORT NSURL final : public NSObject {
  struct Private {};

 public:
  /// Absent if the text holds a blank, a control character, anything that is not ASCII, or a "%"
  /// without two hexadecimal digits. Everything else is taken, the empty text too.
  static Ref<NSURL> URLWithString(std::string_view text, Ref<NSURL> relativeToURL = nullptr);

  /// The file URL of an absolute path, or of one relative to the current folder. Bytes that are no
  /// UTF-8 make it absent.
  static Ref<NSURL> fileURLWithPath(std::string_view path);

  static Class classObject();
  Class isa() const override;

  /// Whether the scheme is "file".
  bool isFileURL() const;

  /// The text that this was made from.
  const std::string& relativeString() const noexcept { return text_; }
  const Ref<NSURL>& baseURL() const noexcept { return base_; }
  /// Without base the text itself; with one what it stands for against the base (RFC 3986, 5.2; the
  /// base's host and port as they stand in it). An empty text stands for all of the base.
  const std::string& absoluteString() const noexcept { return resolved_ ? *resolved_ : text_; }
  /// The URL of `absoluteString`, without base.
  Ref<NSURL> absoluteURL() const;

  /// Letters as they stand in the text. Absent if there is none.
  std::optional<std::string> scheme() const;
  /// Decoded, without the brackets of an IPv6 address: "fe80::1%4". Absent if there is none or an
  /// empty one.
  std::optional<std::string> host() const;
  /// Absent if there is none, or one that is no decimal number in the range of an `int`.
  std::optional<int> port() const;
  /// Decoded, without parameters (from the first ";" on) and then without its last "/": "/dir" of
  /// "http://h/dir/;x=1". "/" stays. Absent for the likes of "mailto:a@b".
  std::optional<std::string> path() const;
  /// As it stands, without "?".
  std::optional<std::string> query() const;
  /// As it stands, without "#".
  std::optional<std::string> fragment() const;

  /// Whether both were made from the same text and from equal bases, if any.
  bool isEqual(const NSObject* other) const override;
  std::size_t hash() const override;
  /// The text, followed by " -- " and the base's description if there is a base.
  std::string description() const override;

  NSURL(Private, std::string_view text, Ref<NSURL> base);

 private:
  std::string text_;
  Ref<NSURL> base_;
  std::optional<std::string> resolved_;
};

}  // namespace rvf
