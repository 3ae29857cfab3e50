// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// What users choose their locale by, in the standard user defaults: a text, the identifier.
inline constexpr std::string_view kAppleLocaleKey = "AppleLocale";

/// Posted on the default notification center after the current locale changed, without object and
/// user info, on the thread that changed it.
inline constexpr std::string_view NSCurrentLocaleDidChangeNotification =
    "NSCurrentLocaleDidChangeNotification";

/// A language with a country, known by an identifier such as "de_AT" or "zh_Hant_TW" (Unicode
/// technical standard 35; "-" separates as well as "_").
///
/// The current locale is the one that the standard user defaults name under "AppleLocale", else the
/// process environment's message locale. It is kept until `NSCurrentLocaleDidChangeNotification` is
/// posted, so who changes the defaults posts that. The C library's process-wide locale is neither
/// read nor changed.
///
/// Thread: any; immutable. The current one may be asked for and changed on any thread. Lifetime:
/// owns its identifier.
class RVF_EXPORT NSLocale final : public NSObject {
 public:
  explicit NSLocale(std::string_view localeIdentifier);

  /// Takes any text; `languageCode` is empty if it names no language.
  static Ref<NSLocale> localeWithLocaleIdentifier(std::string_view identifier);

  /// The locale that user-visible texts are for. Thread-safe. Its first call begins the use of the
  /// standard user defaults.
  static Ref<NSLocale> currentLocale();
  /// Sets "AppleLocale" for this process, without storing it, and announces the change; absent goes
  /// back to the environment's. Raises `NSInvalidArgumentException` for what is no UTF-8.
  /// Thread-safe.
  static void setCurrentLocaleIdentifier(const std::optional<std::string>& identifier);
  /// Forgets the current locale and posts `NSCurrentLocaleDidChangeNotification`, so that no
  /// observer meets the old one. Thread-safe.
  static void announceChangeOfCurrentLocale();
  /// Another number after each change of the current locale; so who keeps what depends on it knows
  /// when to make it anew. Thread-safe, without a lock.
  static unsigned long changesOfCurrentLocale() noexcept;
  /// The identifier that these values of the environment's variables stand for: the first that is
  /// not empty, without character set and modifier. "C", "POSIX", none and what names no language
  /// are "en_US_POSIX".
  static std::string identifierForEnvironment(std::string_view lcAll, std::string_view lcMessages,
                                              std::string_view lang);

  static Class classObject();
  Class isa() const override;

  /// As it was given, whether it names a known locale or not.
  const std::string& localeIdentifier() const noexcept { return identifier_; }
  /// "de": two to eight ASCII letters in lower case; empty if the identifier names no language.
  std::string languageCode() const;
  /// "AT" or "419": two ASCII letters in upper case or three digits; empty if there is none.
  std::string countryCode() const;
  /// "," in Germany, "." in an unknown locale.
  std::string decimalSeparator() const;

  bool isEqual(const NSObject* other) const override;
  std::size_t hash() const override;
  std::string description() const override { return identifier_; }

 private:
  std::string identifier_;
};

}  // namespace rvf
