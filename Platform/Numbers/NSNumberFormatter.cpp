// SPDX-License-Identifier: Apache-2.0
#include "Platform/Numbers/NSNumberFormatter.h"

#include <array>
#include <charconv>
#include <cmath>
#include <typeinfo>
#include <utility>

#include "Platform/Locale/NSBundle.h"
#include "Platform/Numbers/NSDecimalNumber.h"
#include "Platform/Numbers/NumberFormatEngine.h"
#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Text/Format.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSNumberFormatter::classObject);

/// The texts of the platform's own that users see.
Ref<NSBundle> platformBundle() {
  static const auto kBundle = std::make_shared<NSBundle>("RVFPlatform", nullptr);
  return kBundle;
}

const NSBundleRegistration kBundleRegistration("NSNumberFormatter", &platformBundle);

std::string invalidValueText(std::string_view text) {
  const auto bundle = NSBundle::bundleForClass(NSNumberFormatter::classObject());
  return stringWithFormat(bundle->localizedStringForKey("The value “%@” is invalid."), text);
}

Ref<NSNumber> plainNumber(const NSDecimal& value) {
  const auto decimal = NSDecimalNumber::decimalNumberWithDecimal(value);
  const auto integer = box(decimal->longLongValue());
  if (decimal->compare(*integer) == 0) return integer;
  return box(value.doubleValue());
}

}  // namespace

class NSNumberFormatter::State {
  using Buffer = std::array<char, NSDecimal::kLongestText>;

 public:
  /// The engine for the settings as they are and the locale of this moment.
  const NumberFormatEngine& engine() {
    const unsigned long changes = locale ? 0 : NSLocale::changesOfCurrentLocale();
    if (engine_ && changes == changes_) return *engine_;
    changes_ = changes;
    settings.localeIdentifier = localeInUse()->localeIdentifier();
    engine_ = std::make_unique<NumberFormatEngine>(settings);
    return *engine_;
  }

  Ref<NSLocale> localeInUse() const { return locale ? locale : NSLocale::currentLocale(); }

  /// To be called after every change of what the engine depends on.
  void forgetEngine() noexcept { engine_.reset(); }

  std::string text(const NSDecimal& number) {
    if (number.isNaN()) return "NaN";
    Buffer buffer;  // filled by the next line
    return text(buffer, number.write(buffer.data()));
  }

  std::string text(const NSNumber& number) {
    const double value = number.doubleValue();
    if (std::isnan(value)) return "NaN";
    if (std::isinf(value)) return engine().text(value);
    Buffer buffer{};
    return text(buffer, writePlain(number, buffer));
  }

  NumberFormatSettings settings;
  Ref<NSLocale> locale;
  NSNumberFormatterBehavior behavior = NSNumberFormatterBehaviorDefault;
  bool generatesDecimalNumbers = false;
  std::string nilSymbol;

 private:
  std::string text(const Buffer& buffer, const char* end) {
    return engine().text({buffer.data(), static_cast<std::size_t>(end - buffer.data())});
  }

  static const char* writePlain(const NSNumber& number, Buffer& buffer) {
    const std::string& type = number.objCType();
    if (type == "d") return std::to_chars(buffer.begin(), buffer.end(), number.doubleValue()).ptr;
    if (type == "f") return std::to_chars(buffer.begin(), buffer.end(), number.floatValue()).ptr;
    if (type == "Q")
      return std::to_chars(buffer.begin(), buffer.end(), number.unsignedLongLongValue()).ptr;
    return std::to_chars(buffer.begin(), buffer.end(), number.longLongValue()).ptr;
  }

  std::unique_ptr<NumberFormatEngine> engine_;
  unsigned long changes_ = 0;  ///< of the current locale when the engine was made
};

NSNumberFormatter::NSNumberFormatter() : state_(std::make_unique<State>()) {}

NSNumberFormatter::~NSNumberFormatter() = default;

Class NSNumberFormatter::classObject() {
  static const Class kClass =
      ClassBuilder<NSNumberFormatter>("NSNumberFormatter", NSFormatter::classObject())
          .property("formatterBehavior", "TQ,N")
          .property("numberStyle", "TQ,N")
          .property("positiveFormat", "T@\"NSString\",C,N")
          .property("negativeFormat", "T@\"NSString\",C,N")
          .property("locale", "T@\"NSLocale\",&,N")
          .property("roundingMode", "TQ,N")
          .property("nilSymbol", "T@\"NSString\",C,N")
          .property("generatesDecimalNumbers", "Tc,N")
          .property("lenient", "Tc,N,GisLenient")
          .method<&NSNumberFormatter::formatterBehavior>("formatterBehavior")
          .method<&NSNumberFormatter::setFormatterBehavior>("setFormatterBehavior:")
          .method<&NSNumberFormatter::numberStyle>("numberStyle")
          .method<&NSNumberFormatter::setNumberStyle>("setNumberStyle:")
          .method<&NSNumberFormatter::positiveFormat>("positiveFormat")
          .method<&NSNumberFormatter::setPositiveFormat>("setPositiveFormat:")
          .method<&NSNumberFormatter::negativeFormat>("negativeFormat")
          .method<&NSNumberFormatter::setNegativeFormat>("setNegativeFormat:")
          .method<&NSNumberFormatter::locale>("locale")
          .method<&NSNumberFormatter::setLocale>("setLocale:")
          .method<&NSNumberFormatter::roundingMode>("roundingMode")
          .method<&NSNumberFormatter::setRoundingMode>("setRoundingMode:")
          .method<&NSNumberFormatter::nilSymbol>("nilSymbol")
          .method<&NSNumberFormatter::setNilSymbol>("setNilSymbol:")
          .method<&NSNumberFormatter::generatesDecimalNumbers>("generatesDecimalNumbers")
          .method<&NSNumberFormatter::setGeneratesDecimalNumbers>("setGeneratesDecimalNumbers:")
          .method<&NSNumberFormatter::isLenient>("isLenient")
          .method<&NSNumberFormatter::setLenient>("setLenient:")
          .registered();
  return kClass;
}

Class NSNumberFormatter::isa() const {
  return classObject();
}

NSNumberFormatterBehavior NSNumberFormatter::formatterBehavior() const noexcept {
  return state_->behavior;
}

void NSNumberFormatter::setFormatterBehavior(NSNumberFormatterBehavior behavior) {
  announceChange(*this, "formatterBehavior", [&] { state_->behavior = behavior; });
}

NSNumberFormatterStyle NSNumberFormatter::numberStyle() const noexcept {
  return state_->settings.style;
}

void NSNumberFormatter::setNumberStyle(NSNumberFormatterStyle style) {
  announceChange(*this, "numberStyle", [&] {
    state_->settings.style = style;
    state_->settings.positivePattern.reset();
    state_->settings.negativePattern.reset();
    state_->forgetEngine();
  });
}

std::string NSNumberFormatter::positiveFormat() const {
  return state_->engine().positivePattern();
}

void NSNumberFormatter::setPositiveFormat(std::string_view pattern) {
  announceChange(*this, "positiveFormat", [&] {
    state_->settings.positivePattern = pattern;
    state_->forgetEngine();
  });
}

std::string NSNumberFormatter::negativeFormat() const {
  return state_->engine().negativePattern();
}

void NSNumberFormatter::setNegativeFormat(std::string_view pattern) {
  announceChange(*this, "negativeFormat", [&] {
    state_->settings.negativePattern = pattern;
    state_->forgetEngine();
  });
}

Ref<NSLocale> NSNumberFormatter::locale() const {
  return state_->localeInUse();
}

void NSNumberFormatter::setLocale(Ref<NSLocale> locale) {
  announceChange(*this, "locale", [&] {
    state_->locale = std::move(locale);
    state_->forgetEngine();
  });
}

NSNumberFormatterRoundingMode NSNumberFormatter::roundingMode() const noexcept {
  return state_->settings.rounding;
}

void NSNumberFormatter::setRoundingMode(NSNumberFormatterRoundingMode mode) {
  announceChange(*this, "roundingMode", [&] {
    state_->settings.rounding = mode;
    state_->forgetEngine();
  });
}

const std::string& NSNumberFormatter::nilSymbol() const noexcept {
  return state_->nilSymbol;
}

void NSNumberFormatter::setNilSymbol(std::string_view symbol) {
  announceChange(*this, "nilSymbol", [&] { state_->nilSymbol = symbol; });
}

bool NSNumberFormatter::generatesDecimalNumbers() const noexcept {
  return state_->generatesDecimalNumbers;
}

void NSNumberFormatter::setGeneratesDecimalNumbers(bool generates) {
  announceChange(*this, "generatesDecimalNumbers",
                 [&] { state_->generatesDecimalNumbers = generates; });
}

bool NSNumberFormatter::isLenient() const noexcept {
  return state_->settings.isLenient;
}

void NSNumberFormatter::setLenient(bool isLenient) {
  announceChange(*this, "lenient", [&] {
    state_->settings.isLenient = isLenient;
    state_->forgetEngine();
  });
}

std::optional<std::string> NSNumberFormatter::stringForObjectValue(const id& value) {
  if (!value) return state_->nilSymbol;
  const NSObject& object = *value;
  if (typeid(object) == typeid(NSDecimalNumber))  // a cast costs as much as a few digits
    return state_->text(static_cast<const NSDecimalNumber&>(object).decimalValue());
  const auto* number = dynamic_cast<const NSNumber*>(&object);
  if (!number) return std::nullopt;
  return state_->text(*number);
}

std::optional<std::string> NSNumberFormatter::editingStringForObjectValue(const id& value) {
  return value ? stringForObjectValue(value) : "";
}

bool NSNumberFormatter::getObjectValue(id* object, std::string_view forString,
                                       std::string* errorDescription) {
  const Ref<NSNumber> number = numberFromString(forString);
  if (!number) {
    if (errorDescription) *errorDescription = invalidValueText(forString);
    return false;
  }
  if (object) *object = number;
  return true;
}

Ref<NSNumber> NSNumberFormatter::numberFromString(std::string_view text, Ref<NSError>* error) {
  const std::optional<NSDecimal> value = state_->engine().number(text);
  if (value) {
    if (!state_->generatesDecimalNumbers) return plainNumber(*value);
    return NSDecimalNumber::decimalNumberWithDecimal(*value);
  }
  if (error) {
    *error =
        NSError::errorWithDomain(NSCocoaErrorDomain, NSFormattingError,
                                 NSDictionary::dictionaryWithEntries(
                                     {{NSLocalizedDescriptionKey, box(invalidValueText(text))}}));
  }
  return nullptr;
}

}  // namespace rvf
