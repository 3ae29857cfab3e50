// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/URLComponents.h"

#include <algorithm>

namespace rvf {
namespace {

constexpr bool isLetter(char c) noexcept {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

constexpr bool isSchemeCharacter(char c) noexcept {
  return isLetter(c) || (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
}

bool isScheme(std::string_view text) noexcept {
  return !text.empty() && isLetter(text.front()) && std::ranges::all_of(text, isSchemeCharacter);
}

/// Cuts off and answers what stands before the first of these characters, or all.
std::string_view takeUntil(std::string_view& text, std::string_view characters) noexcept {
  const std::size_t end = std::min(text.find_first_of(characters), text.size());
  const std::string_view part = text.substr(0, end);
  text.remove_prefix(end);
  return part;
}

/// Drops the last segment of a path, and the "/" before it if it has one.
void removeLastSegment(std::string& path) {
  const std::size_t slash = path.rfind('/');
  path.resize(slash == std::string::npos ? 0 : slash);
}

/// RFC 3986, 5.2.4, step by step.
std::string removeDotSegments(std::string_view input) {
  std::string output;
  output.reserve(input.size());
  while (!input.empty()) {
    if (input.starts_with("../")) {
      input.remove_prefix(3);
    } else if (input.starts_with("./")) {
      input.remove_prefix(2);
    } else if (input.starts_with("/./")) {
      input.remove_prefix(2);
    } else if (input == "/.") {
      input = "/";
    } else if (input.starts_with("/../")) {
      input.remove_prefix(3);
      removeLastSegment(output);
    } else if (input == "/..") {
      input = "/";
      removeLastSegment(output);
    } else if (input == "." || input == "..") {
      input = {};
    } else {
      const std::size_t end = std::min(input.find('/', 1), input.size());
      output += input.substr(0, end);
      input.remove_prefix(end);
    }
  }
  return output;
}

/// RFC 3986, 5.2.3.
std::string merge(const URLComponents& base, std::string_view path) {
  if (base.authority && base.path.empty()) return '/' + std::string(path);
  const std::size_t slash = base.path.rfind('/');
  const std::string_view folder =
      slash == std::string_view::npos ? std::string_view() : base.path.substr(0, slash + 1);
  return std::string(folder) + std::string(path);
}

/// RFC 3986, 5.2.2.
std::string resolvedPath(const URLComponents& base, const URLComponents& reference) {
  if (reference.scheme || reference.authority || reference.path.starts_with('/'))
    return removeDotSegments(reference.path);
  if (reference.path.empty()) return std::string(base.path);
  return removeDotSegments(merge(base, reference.path));
}

/// RFC 3986, 5.3.
std::string recompose(const URLComponents& parts) {
  std::string text;
  if (parts.scheme) (text += *parts.scheme) += ':';
  if (parts.authority) {
    (text += "//") += *parts.authority;
  } else if (parts.path.starts_with("//")) {
    text += "/.";  // or the path would read as an authority
  }
  text += parts.path;
  if (parts.query) (text += '?') += *parts.query;
  if (parts.fragment) (text += '#') += *parts.fragment;
  return text;
}

}  // namespace

URLComponents splitURL(std::string_view text) noexcept {
  URLComponents parts;
  std::string_view rest = text;
  const std::string_view beforeColon = takeUntil(rest, ":/?#");
  if (rest.starts_with(':') && isScheme(beforeColon)) {
    parts.scheme = beforeColon;
    rest.remove_prefix(1);
  } else {
    rest = text;
  }
  if (rest.starts_with("//")) {
    rest.remove_prefix(2);
    parts.authority = takeUntil(rest, "/?#");
  }
  parts.path = takeUntil(rest, "?#");
  if (rest.starts_with('?')) {
    rest.remove_prefix(1);
    parts.query = takeUntil(rest, "#");
  }
  if (rest.starts_with('#')) parts.fragment = rest.substr(1);
  return parts;
}

std::string resolveURL(std::string_view base, std::string_view reference) {
  if (reference.empty()) return std::string(base);
  const URLComponents baseParts = splitURL(base);
  URLComponents parts = splitURL(reference);
  const std::string path = resolvedPath(baseParts, parts);
  if (!parts.scheme) {
    parts.scheme = baseParts.scheme;
    if (!parts.authority) {
      parts.authority = baseParts.authority;
      if (parts.path.empty() && !parts.query) parts.query = baseParts.query;
    }
  }
  parts.path = path;
  return recompose(parts);
}

}  // namespace rvf
