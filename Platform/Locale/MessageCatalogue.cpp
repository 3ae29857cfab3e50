// SPDX-License-Identifier: Apache-2.0
#include "Platform/Locale/MessageCatalogue.h"

#include <boost/locale/gnu_gettext.hpp>
#include <boost/locale/message.hpp>
#include <exception>

namespace rvf {
namespace {

using Messages = boost::locale::message_format<char>;

std::locale readMessages(const std::vector<std::string>& folders, std::string_view table,
                         const NSLocale& locale) {
  boost::locale::gnu_gettext::messages_info info;
  info.language = locale.languageCode();
  info.country = locale.countryCode();
  info.encoding = "UTF-8";
  info.paths = folders;
  info.domains.emplace_back();
  info.domains.back().name = table;
  info.domains.back().encoding = "UTF-8";
  return {std::locale::classic(), boost::locale::gnu_gettext::create_messages_facet<char>(info)};
}

}  // namespace

MessageCatalogue::MessageCatalogue(const std::vector<std::string>& folders, std::string_view table,
                                   const NSLocale& locale)
    : messages_(std::locale::classic()) {
  // Language and table become part of a path.
  constexpr std::string_view kNoFileName("/\0", 2);
  if (locale.languageCode().empty() || table.find_first_of(kNoFileName) != std::string_view::npos)
    return;
  try {
    messages_ = readMessages(folders, table, locale);
  } catch (const std::exception&) {
    // A damaged catalogue: the keys stand for themselves, as without one.
  }
}

std::optional<std::string> MessageCatalogue::textForKey(std::string_view key) const {
  // The reader ends a key at its first zero byte; the empty key is the catalogue's header.
  if (key.empty() || key.find('\0') != std::string_view::npos) return std::nullopt;
  if (!std::has_facet<Messages>(messages_)) return std::nullopt;
  try {
    const char* text =
        std::use_facet<Messages>(messages_).get(0, nullptr, std::string(key).c_str());
    if (text && *text) return text;
  } catch (const std::exception&) {
    // A damaged entry.
  }
  return std::nullopt;
}

}  // namespace rvf
