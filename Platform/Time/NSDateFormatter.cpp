// SPDX-License-Identifier: Apache-2.0
#include "Platform/Time/NSDateFormatter.h"

#include <unicode/smpdtfmt.h>

#include <cmath>
#include <utility>

#include "Platform/Locale/NSBundle.h"
#include "Platform/Numbers/NSNumberFormatter.h"
#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Text/Format.h"
#include "Platform/Time/ICUCalendar.h"
#include "Platform/Time/ICUTimeZone.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSDateFormatter::classObject);

/// No pattern for people writes that much; and the library's lengths are 32-bit.
constexpr std::size_t kLongestText = 10'000;

icu::UnicodeString unicode(std::string_view text) {
  return icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
}

/// Most dates are ASCII, which needs no conversion.
std::string utf8(const icu::UnicodeString& text) {
  const char16_t* const units = text.getBuffer();
  std::string result(static_cast<std::size_t>(text.length()), '\0');
  char16_t all = 0;
  for (std::size_t i = 0; i < result.size(); ++i) {
    all |= units[i];
    result[i] = static_cast<char>(units[i]);
  }
  if (all <= 0x7F) return result;
  result.clear();
  return text.toUTF8String(result);
}

std::unique_ptr<icu::SimpleDateFormat> newEngine(const std::string& pattern, const NSLocale& locale,
                                                 const NSTimeZone& zone) {
  UErrorCode status = U_ZERO_ERROR;
  auto engine = std::make_unique<icu::SimpleDateFormat>(
      unicode(pattern), icu::Locale(locale.localeIdentifier().c_str()), status);
  icu::UnicodeString ignored;  // only writing tells whether every letter has a meaning
  engine->format(0, ignored, nullptr, status);
  if (U_FAILURE(status)) NSException::raise(NSInvalidArgumentException, "malformed date format");
  engine->adoptTimeZone(icuTimeZone(zone.name()).release());
  engine->setLenient(false);
  return engine;
}

/// The whole milliseconds since 1970 that a date shows. Most thousandths of a second are no
/// doubles, so a date that was read from a text lies a little beside its own.
double shownMilliseconds(const SplitDate& split, const NSDate& date) {
  const double nearest = std::nearbyint(split.fraction * 1000);
  const SplitDate meant{split.milliseconds, nearest / 1000};
  const bool isMeant =
      meant.date()->timeIntervalSinceReferenceDate() == date.timeIntervalSinceReferenceDate();
  return split.milliseconds + (isMeant ? nearest : std::floor(split.fraction * 1000));
}

/// The closest date to whole milliseconds since 1970.
Ref<NSDate> dateOf(double milliseconds) {
  const double second = std::floor(milliseconds / 1000) * 1000;
  return SplitDate{second, (milliseconds - second) / 1000}.date();
}

std::string invalidValueText(std::string_view text) {
  const auto bundle = NSBundle::bundleForClass(NSNumberFormatter::classObject());
  return stringWithFormat(bundle->localizedStringForKey("The value “%@” is invalid."), text);
}

}  // namespace

class NSDateFormatter::State final {
 public:
  /// For the settings as they are and the locale of this moment.
  const icu::SimpleDateFormat& engine() {
    const unsigned long changes = locale ? 0 : NSLocale::changesOfCurrentLocale();
    if (engine_ && changes == changes_) return *engine_;
    changes_ = changes;
    engine_ = newEngine(pattern, *localeInUse(), *zoneInUse());
    return *engine_;
  }

  Ref<NSLocale> localeInUse() const { return locale ? locale : NSLocale::currentLocale(); }
  Ref<NSTimeZone> zoneInUse() const { return zone ? zone : NSTimeZone::defaultTimeZone(); }

  /// To be called after every change of what the engine depends on.
  void forgetEngine() noexcept { engine_.reset(); }

  std::string text(double milliseconds) {
    icu::UnicodeString text;
    engine().format(milliseconds, text);
    return utf8(text);
  }

  std::string pattern;
  Ref<NSLocale> locale;
  Ref<NSTimeZone> zone;

 private:
  std::unique_ptr<icu::SimpleDateFormat> engine_;
  unsigned long changes_ = 0;  ///< of the current locale when the engine was made
};

NSDateFormatter::NSDateFormatter() : state_(std::make_unique<State>()) {}

NSDateFormatter::~NSDateFormatter() = default;

Class NSDateFormatter::classObject() {
  static const Class kClass =
      ClassBuilder<NSDateFormatter>("NSDateFormatter", NSFormatter::classObject())
          .property("dateFormat", "T@\"NSString\",C,N")
          .property("locale", "T@\"NSLocale\",C,N")
          .property("timeZone", "T@\"NSTimeZone\",C,N")
          .method<&NSDateFormatter::dateFormat>("dateFormat")
          .method<&NSDateFormatter::setDateFormat>("setDateFormat:")
          .method<&NSDateFormatter::locale>("locale")
          .method<&NSDateFormatter::setLocale>("setLocale:")
          .method<&NSDateFormatter::timeZone>("timeZone")
          .method<&NSDateFormatter::setTimeZone>("setTimeZone:")
          .method<&NSDateFormatter::stringFromDate>("stringFromDate:")
          .method<&NSDateFormatter::dateFromString>("dateFromString:")
          .registered();
  return kClass;
}

Class NSDateFormatter::isa() const {
  return classObject();
}

const std::string& NSDateFormatter::dateFormat() const noexcept {
  return state_->pattern;
}

void NSDateFormatter::setDateFormat(std::string_view pattern) {
  announceChange(*this, "dateFormat", [&] {
    state_->pattern = pattern;
    state_->forgetEngine();
  });
}

Ref<NSLocale> NSDateFormatter::locale() const {
  return state_->localeInUse();
}

void NSDateFormatter::setLocale(Ref<NSLocale> locale) {
  announceChange(*this, "locale", [&] {
    state_->locale = std::move(locale);
    state_->forgetEngine();
  });
}

Ref<NSTimeZone> NSDateFormatter::timeZone() const {
  return state_->zoneInUse();
}

void NSDateFormatter::setTimeZone(Ref<NSTimeZone> zone) {
  announceChange(*this, "timeZone", [&] {
    state_->zone = std::move(zone);
    state_->forgetEngine();
  });
}

std::optional<std::string> NSDateFormatter::stringFromDate(const Ref<NSDate>& date) {
  const std::optional<SplitDate> split = SplitDate::of(date.get());
  if (!split) return std::nullopt;
  return state_->text(shownMilliseconds(*split, *date));
}

Ref<NSDate> NSDateFormatter::dateFromString(std::string_view text) {
  if (text.empty() || text.size() > kLongestText) return nullptr;
  const icu::UnicodeString wanted = unicode(text);
  icu::ParsePosition position(0);
  const UDate milliseconds = state_->engine().parse(wanted, position);
  // The library forgives blanks, missing digits and whatever stands behind the date, lenient or
  // not.
  if (position.getIndex() != wanted.length() || state_->text(milliseconds) != text) return nullptr;
  return dateOf(milliseconds);
}

std::optional<std::string> NSDateFormatter::stringForObjectValue(const id& value) {
  return stringFromDate(std::dynamic_pointer_cast<NSDate>(value));
}

bool NSDateFormatter::getObjectValue(id* object, std::string_view forString,
                                     std::string* errorDescription) {
  const Ref<NSDate> date = dateFromString(forString);
  if (!date) {
    if (errorDescription) *errorDescription = invalidValueText(forString);
    return false;
  }
  if (object) *object = date;
  return true;
}

}  // namespace rvf
