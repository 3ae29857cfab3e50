// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Network/NSURL.h"
#include "Platform/Text/Format.h"
#include "Platform/Values/NSData.h"

namespace rvf {

/// Operations of the URL class itself.
///
/// Thread: any. Lifetime: keeps nothing.
struct RVF_EXPORT NSURL_RVFExtensions {
  /// The base URL of the server at a socket address (an address block, see `SocketAddress`):
  ///
  ///     https://192.168.1.10:9630/
  ///     https://[fe80::1]:9630/
  ///     https://[fe80::1%254]:9630/       with scope 4; "%25" is the escaped "%" before a zone
  ///
  /// Port and scope are printed as signed numbers of 16 and 32 bits, so port 40000 is "-25536".
  /// Any other family is a reported assertion, "Unsupported Address Family", as is a block that
  /// holds no whole address; absent if its handler returns.
  static Ref<NSURL> RVF_CURLURLWithAddressData(const Ref<NSData>& addressData);
};

/// The filled format (see `formatText`, which raises for a wrong one) as a URL relative to `base`.
/// Absent if the text makes no URL or the base is absent.
template <class... Arguments>
Ref<NSURL> relativeURLWithFormat(const Ref<NSURL>& base, std::string_view format,
                                 const Arguments&... arguments) {
  return base ? NSURL::URLWithString(stringWithFormat(format, arguments...), base) : nullptr;
}

/// The URL's path, with the final "/" that `path` takes off put back where the text has it. That
/// is looked for in all of the absolute text: it ends in "/" or holds "/?", "/;" or "/#".
RVF_EXPORT std::optional<std::string> RVF_pathWithTrailingSlash(const Ref<NSURL>& url);

/// The absolute text with the pieces of its query ("key=value", as they stand) in ascending order
/// by UTF-16 code unit, "=" coming before every other character: "?a1=1&a=2" becomes "?a=2&a1=1".
///
/// A text without query, with more than one "?", or with "#" right behind it stays as it is. With
/// more than one "#" behind the "?" query and fragments are replaced by "(null)", and the text goes
/// to the log. Absent for an absent URL.
RVF_EXPORT std::optional<std::string> RVF_absoluteStringWithSortedQuery(const Ref<NSURL>& url);

/// The URL of that text.
RVF_EXPORT Ref<NSURL> RVF_absoluteURLWithSortedQuery(const Ref<NSURL>& url);

}  // namespace rvf
