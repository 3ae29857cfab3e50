// SPDX-License-Identifier: Apache-2.0
#include "Platform/Locale/NSLocale.h"

#include <unicode/dcfmtsym.h>
#include <unicode/locid.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <functional>
#include <mutex>

#include "Platform/Observation/NSNotificationCenter.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Storage/NSUserDefaults.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSLocale::classObject);

constexpr std::string_view kPOSIXIdentifier = "en_US_POSIX";
constexpr std::string_view kSeparators = "_-";

constexpr bool isLower(char c) noexcept {
  return c >= 'a' && c <= 'z';
}
constexpr bool isUpper(char c) noexcept {
  return c >= 'A' && c <= 'Z';
}
constexpr bool isLetter(char c) noexcept {
  return isLower(c) || isUpper(c);
}
constexpr bool isDigit(char c) noexcept {
  return c >= '0' && c <= '9';
}
constexpr char lowered(char c) noexcept {
  return isUpper(c) ? static_cast<char>(c - 'A' + 'a') : c;
}
constexpr char raised(char c) noexcept {
  return isLower(c) ? static_cast<char>(c - 'a' + 'A') : c;
}

/// Cuts the next subtag off the front of an identifier.
std::string_view nextSubtag(std::string_view& identifier) noexcept {
  const std::size_t end = std::min(identifier.find_first_of(kSeparators), identifier.size());
  const std::string_view subtag = identifier.substr(0, end);
  identifier.remove_prefix(std::min(end + 1, identifier.size()));
  return subtag;
}

bool isLanguage(std::string_view subtag) noexcept {
  return subtag.size() >= 2 && subtag.size() <= 8 && std::ranges::all_of(subtag, isLetter);
}

bool isScript(std::string_view subtag) noexcept {
  return subtag.size() == 4 && std::ranges::all_of(subtag, isLetter);
}

bool isCountry(std::string_view subtag) noexcept {
  return (subtag.size() == 2 && std::ranges::all_of(subtag, isLetter)) ||
         (subtag.size() == 3 && std::ranges::all_of(subtag, isDigit));
}

std::string_view environmentValue(const char* name) noexcept {
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): read once, see below
  return value ? value : "";
}

/// Read once: a host may change its environment later, while other threads run.
const std::string& environmentIdentifier() {
  static const std::string kIdentifier = NSLocale::identifierForEnvironment(
      environmentValue("LC_ALL"), environmentValue("LC_MESSAGES"), environmentValue("LANG"));
  return kIdentifier;
}

constinit std::atomic<unsigned long> changeCount{0};

void forgetCurrentLocale() noexcept {
  changeCount.fetch_add(1, std::memory_order_release);
}

/// Hears of changes that others announce, ahead of all other observers: they get the new locale
/// when they ask for it, even those that registered before the locale was first asked for.
class ChangeListener final : public NSObject {
 public:
  static Class classObject();
  Class isa() const override { return classObject(); }

  void currentLocaleDidChange(const id& /*notification*/) noexcept { forgetCurrentLocale(); }
};

Class ChangeListener::classObject() {
  static const Class kClass =
      ClassBuilder<ChangeListener>("NSLocaleChangeListener", NSObject::classObject())
          .method<&ChangeListener::currentLocaleDidChange>("currentLocaleDidChange:")
          .registered();
  return kClass;
}

struct CurrentLocale {
  CurrentLocale() {
    NSNotificationCenter::defaultCenter()->addLeadingObserver(
        listener, SEL("currentLocaleDidChange:"), std::string(NSCurrentLocaleDidChangeNotification),
        nullptr);
  }

  const Ref<ChangeListener> listener = std::make_shared<ChangeListener>();
  std::mutex mutex;
  Ref<NSLocale> locale;       ///< absent until it is first asked for
  unsigned long changes = 0;  ///< the count when it was found
};

CurrentLocale& current() {
  static CurrentLocale& state = *new CurrentLocale;  // never destroyed: observers may outlive it
  return state;
}

std::string currentIdentifier() {
  const auto chosen =
      unboxText(NSUserDefaults::standardUserDefaults()->objectForKey(kAppleLocaleKey));
  return chosen ? *chosen : environmentIdentifier();
}

}  // namespace

NSLocale::NSLocale(std::string_view localeIdentifier) : identifier_(localeIdentifier) {}

Ref<NSLocale> NSLocale::localeWithLocaleIdentifier(std::string_view identifier) {
  return std::make_shared<NSLocale>(identifier);
}

Ref<NSLocale> NSLocale::currentLocale() {
  CurrentLocale& state = current();
  const unsigned long changes = changesOfCurrentLocale();
  {
    const std::lock_guard lock(state.mutex);
    if (state.locale && state.changes == changes) return state.locale;
  }
  // Without the lock: whoever reads the defaults may wait for a thread that asks for the locale.
  auto locale = localeWithLocaleIdentifier(currentIdentifier());
  const std::lock_guard lock(state.mutex);
  if (!state.locale || state.changes < changes) {
    state.locale = locale;
    state.changes = changes;
  }
  return state.changes == changes ? state.locale : locale;
}

void NSLocale::setCurrentLocaleIdentifier(const std::optional<std::string>& identifier) {
  const id chosen = identifier ? box(*identifier) : nullptr;
  NSUserDefaults::standardUserDefaults()->setObject(chosen, kAppleLocaleKey);
  announceChangeOfCurrentLocale();
}

void NSLocale::announceChangeOfCurrentLocale() {
  forgetCurrentLocale();
  NSNotificationCenter::defaultCenter()->postNotificationName(NSCurrentLocaleDidChangeNotification,
                                                              nullptr);
}

unsigned long NSLocale::changesOfCurrentLocale() noexcept {
  return changeCount.load(std::memory_order_acquire);
}

std::string NSLocale::identifierForEnvironment(std::string_view lcAll, std::string_view lcMessages,
                                               std::string_view lang) {
  std::string_view value = !lcAll.empty() ? lcAll : !lcMessages.empty() ? lcMessages : lang;
  value = value.substr(0, value.find_first_of(".@"));
  std::string_view rest = value;
  if (value == "POSIX" || !isLanguage(nextSubtag(rest))) return std::string(kPOSIXIdentifier);
  return std::string(value);
}

Class NSLocale::classObject() {
  static const Class kClass =
      ClassBuilder<NSLocale>("NSLocale", NSObject::classObject())
          .property("localeIdentifier", "T@\"NSString\",R,C,N,V_localeIdentifier")
          .registered();
  return kClass;
}

Class NSLocale::isa() const {
  return classObject();
}

std::string NSLocale::languageCode() const {
  std::string_view rest = identifier_;
  std::string code(nextSubtag(rest));
  if (!isLanguage(code)) return "";
  std::ranges::transform(code, code.begin(), lowered);
  return code;
}

std::string NSLocale::countryCode() const {
  std::string_view rest = identifier_;
  nextSubtag(rest);
  std::string_view subtag = nextSubtag(rest);
  if (isScript(subtag)) subtag = nextSubtag(rest);
  if (!isCountry(subtag)) return "";
  std::string code(subtag);
  std::ranges::transform(code, code.begin(), raised);
  return code;
}

std::string NSLocale::decimalSeparator() const {
  if (identifier_ == kPOSIXIdentifier) return ".";
  UErrorCode status = U_ZERO_ERROR;
  const icu::DecimalFormatSymbols symbols(icu::Locale(identifier_.c_str()), status);
  std::string separator;
  if (U_SUCCESS(status)) {
    symbols.getConstSymbol(icu::DecimalFormatSymbols::kDecimalSeparatorSymbol)
        .toUTF8String(separator);
  }
  return separator.empty() ? "." : separator;
}

bool NSLocale::isEqual(const NSObject* other) const {
  const auto* locale = dynamic_cast<const NSLocale*>(other);
  return locale && identifier_ == locale->identifier_;
}

std::size_t NSLocale::hash() const {
  return std::hash<std::string>()(identifier_);
}

}  // namespace rvf
