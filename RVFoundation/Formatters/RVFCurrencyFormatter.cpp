// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Formatters/RVFCurrencyFormatter.h"

#include <utility>

#include "Platform/Numbers/NSDecimalNumber.h"
#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "RVFoundation/Formatters/RoundedReading.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&RVFCurrencyFormatter::classObject);

}  // namespace

Ref<RVFCurrencyFormatter> RVFCurrencyFormatter::sharedCurrencyFormatter() {
  static const auto kFormatter = std::make_shared<RVFCurrencyFormatter>();
  return kFormatter;
}

Class RVFCurrencyFormatter::classObject() {
  static const Class kClass =
      ClassBuilder<RVFCurrencyFormatter>("RVFCurrencyFormatter", NSFormatter::classObject())
          .property("locale", "T@\"NSLocale\",&,N,Vlocale")
          .ivar<&RVFCurrencyFormatter::locale_>("locale")
          .ivar<&RVFCurrencyFormatter::formatter_>("formatter")
          .method<&RVFCurrencyFormatter::locale>("locale")
          .method<&RVFCurrencyFormatter::setLocale>("setLocale:")
          .method<&RVFCurrencyFormatter::formatter>("formatter")
          .registered();
  return kClass;
}

Class RVFCurrencyFormatter::isa() const {
  return classObject();
}

void RVFCurrencyFormatter::setLocale(Ref<NSLocale> locale) {
  announceChange(*this, "locale", [&] { locale_ = std::move(locale); });
}

const Ref<NSNumberFormatter>& RVFCurrencyFormatter::formatter() {
  if (formatter_) return formatter_;
  formatter_ = std::make_shared<NSNumberFormatter>();
  formatter_->setFormatterBehavior(NSNumberFormatterBehavior10_4);
  formatter_->setNumberStyle(NSNumberFormatterCurrencyStyle);
  formatter_->setGeneratesDecimalNumbers(true);
  formatter_->setLenient(true);
  formatter_->setRoundingMode(NSNumberFormatterRoundHalfEven);
  if (locale_) formatter_->setLocale(locale_);
  formatter_->setPositiveFormat("#,##0.00");
  formatter_->setNegativeFormat("-#,##0.00");
  return formatter_;
}

std::optional<std::string> RVFCurrencyFormatter::stringForObjectValue(const id& value) {
  if (!value) return formatter()->stringForObjectValue(NSDecimalNumber::zero());
  return formatter()->stringForObjectValue(value);
}

std::optional<std::string> RVFCurrencyFormatter::editingStringForObjectValue(const id& value) {
  return formatter()->editingStringForObjectValue(value);
}

bool RVFCurrencyFormatter::getObjectValue(id* object, std::string_view forString,
                                          std::string* errorDescription) {
  return readRounded(formatter(), object, forString, errorDescription);
}

}  // namespace rvf
