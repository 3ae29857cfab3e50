// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/NSURL.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <functional>
#include <system_error>
#include <utility>

#include "Platform/Network/URLComponents.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Storage/NSUserDefaults.h"
#include "Platform/Text/PercentEncoding.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSURL::classObject);
const StoredURLRegistration kStoredURLRegistration([](std::string_view text) -> id {
  return NSURL::URLWithString(text);
});

constexpr bool isVisibleASCII(char c) noexcept {
  return c > ' ' && c < 0x7F;
}

struct HostAndPort {
  std::string_view host;
  std::optional<std::string_view> port;
};

/// Takes an authority apart (RFC 3986, 3.2); the user information is dropped.
HostAndPort splitAuthority(std::string_view authority) noexcept {
  authority.remove_prefix(authority.rfind('@') + 1);  // npos + 1 is 0
  const bool isBracketed = authority.starts_with('[');
  const std::size_t closing = isBracketed ? authority.find(']') : std::string_view::npos;
  const std::size_t portSearch = closing == std::string_view::npos ? 0 : closing;
  const std::size_t colon = authority.find(':', portSearch);
  HostAndPort parts{authority.substr(0, colon), std::nullopt};
  if (colon != std::string_view::npos) parts.port = authority.substr(colon + 1);
  if (closing != std::string_view::npos) parts.host = authority.substr(1, closing - 1);
  return parts;
}

std::optional<std::string> owned(std::optional<std::string_view> part) {
  return part ? std::optional<std::string>(*part) : std::nullopt;
}

}  // namespace

Ref<NSURL> NSURL::URLWithString(std::string_view text, Ref<NSURL> relativeToURL) {
  if (!std::ranges::all_of(text, isVisibleASCII) || !hasOnlyWholePercentEscapes(text))
    return nullptr;
  return std::make_shared<NSURL>(Private(), text, std::move(relativeToURL));
}

Ref<NSURL> NSURL::fileURLWithPath(std::string_view path) {
  std::error_code problem;
  const std::string absolute = std::filesystem::absolute(path, problem).string();
  std::string text = "file://";
  for (std::size_t start = 0; start < absolute.size();) {
    const std::size_t end = std::min(absolute.find('/', start), absolute.size());
    const auto component = addPercentEscapes(absolute.substr(start, end - start));
    if (!component) return nullptr;
    text += *component;
    if (end < absolute.size()) text += '/';
    start = end + 1;
  }
  return URLWithString(text);
}

bool NSURL::isFileURL() const {
  return scheme() == "file";
}

NSURL::NSURL(Private /*unused*/, std::string_view text, Ref<NSURL> base)
    : text_(text), base_(std::move(base)) {
  if (base_) resolved_ = resolveURL(base_->absoluteString(), text_);
}

Class NSURL::classObject() {
  static const Class kClass = ClassBuilder<NSURL>("NSURL", NSObject::classObject())
                                  .property("relativeString", "T@\"NSString\",R,C,N")
                                  .property("baseURL", "T@\"NSURL\",R,C,N")
                                  .property("absoluteString", "T@\"NSString\",R,C,N")
                                  .property("absoluteURL", "T@\"NSURL\",R,C,N")
                                  .property("scheme", "T@\"NSString\",R,C,N")
                                  .property("host", "T@\"NSString\",R,C,N")
                                  .property("path", "T@\"NSString\",R,C,N")
                                  .property("query", "T@\"NSString\",R,C,N")
                                  .property("fragment", "T@\"NSString\",R,C,N")
                                  .method<&NSURL::relativeString>("relativeString")
                                  .method<&NSURL::baseURL>("baseURL")
                                  .method<&NSURL::absoluteString>("absoluteString")
                                  .method<&NSURL::absoluteURL>("absoluteURL")
                                  .method<&NSURL::scheme>("scheme")
                                  .method<&NSURL::host>("host")
                                  .method<&NSURL::path>("path")
                                  .method<&NSURL::query>("query")
                                  .method<&NSURL::fragment>("fragment")
                                  .registered();
  return kClass;
}

Class NSURL::isa() const {
  return classObject();
}

Ref<NSURL> NSURL::absoluteURL() const {
  return std::make_shared<NSURL>(Private(), absoluteString(), nullptr);
}

std::optional<std::string> NSURL::scheme() const {
  return owned(splitURL(absoluteString()).scheme);
}

std::optional<std::string> NSURL::host() const {
  const std::string_view host =
      splitAuthority(splitURL(absoluteString()).authority.value_or("")).host;
  if (host.empty()) return std::nullopt;
  return removePercentEscapes(host);
}

std::optional<int> NSURL::port() const {
  const auto port = splitAuthority(splitURL(absoluteString()).authority.value_or("")).port;
  if (!port || port->starts_with('-')) return std::nullopt;
  int number = 0;
  const char* end = port->data() + port->size();
  const auto [stop, problem] = std::from_chars(port->data(), end, number);
  if (problem != std::errc() || stop != end) return std::nullopt;
  return number;
}

std::optional<std::string> NSURL::path() const {
  const URLComponents parts = splitURL(absoluteString());
  const bool isOpaque = parts.scheme && !parts.authority && !parts.path.starts_with('/');
  if (isOpaque) return std::nullopt;
  std::string_view path = parts.path.substr(0, parts.path.find(';'));
  if (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
  return removePercentEscapes(path);
}

std::optional<std::string> NSURL::query() const {
  return owned(splitURL(absoluteString()).query);
}

std::optional<std::string> NSURL::fragment() const {
  return owned(splitURL(absoluteString()).fragment);
}

bool NSURL::isEqual(const NSObject* other) const {
  const auto* url = dynamic_cast<const NSURL*>(other);
  return url && text_ == url->text_ && objectsAreEqual(base_, url->base_);
}

std::size_t NSURL::hash() const {
  return std::hash<std::string>()(text_);
}

std::string NSURL::description() const {
  return base_ ? text_ + " -- " + base_->description() : text_;
}

}  // namespace rvf
