// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Formatters/RVFQuantityFormatter.h"

#include <utility>

#include "Platform/Numbers/NSDecimalNumber.h"
#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "RVFoundation/Formatters/NSNumberFormatter-QMExtension.h"
#include "RVFoundation/Formatters/RoundedReading.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&RVFQuantityFormatter::classObject);

}  // namespace

RVFQuantityFormatter::RVFQuantityFormatter()
    : quantityFormatter_(NSNumberFormatter_QMExtension::quantityFormatter()) {
  quantityFormatter_->setFormatterBehavior(NSNumberFormatterBehavior10_4);
}

Ref<RVFQuantityFormatter> RVFQuantityFormatter::sharedQuantityFormatter() {
  static const auto kFormatter = std::make_shared<RVFQuantityFormatter>();
  return kFormatter;
}

Class RVFQuantityFormatter::classObject() {
  static const Class kClass =
      ClassBuilder<RVFQuantityFormatter>("RVFQuantityFormatter", NSFormatter::classObject())
          .property("quantityFormatter", "T@\"NSNumberFormatter\",&,N,VquantityFormatter")
          .property("locale", "T@\"NSLocale\",&,N")
          .ivar<&RVFQuantityFormatter::quantityFormatter_>("quantityFormatter")
          .method<&RVFQuantityFormatter::quantityFormatter>("quantityFormatter")
          .method<&RVFQuantityFormatter::setQuantityFormatter>("setQuantityFormatter:")
          .method<&RVFQuantityFormatter::locale>("locale")
          .method<&RVFQuantityFormatter::setLocale>("setLocale:")
          .method(
              "keyPathsForValuesAffectingLocale",
              dependentKeyImplementation<&RVFQuantityFormatter::keyPathsForValuesAffectingLocale>())
          .registered();
  return kClass;
}

Class RVFQuantityFormatter::isa() const {
  return classObject();
}

void RVFQuantityFormatter::setQuantityFormatter(Ref<NSNumberFormatter> formatter) {
  announceChange(*this, "quantityFormatter", [&] { quantityFormatter_ = std::move(formatter); });
}

Ref<NSLocale> RVFQuantityFormatter::locale() const {
  return quantityFormatter_ ? quantityFormatter_->locale() : nullptr;
}

std::set<std::string> RVFQuantityFormatter::keyPathsForValuesAffectingLocale() {
  return {"quantityFormatter.locale"};
}

void RVFQuantityFormatter::setLocale(Ref<NSLocale> locale) {
  // The inner formatter's announcement is one of this locale, too.
  if (quantityFormatter_) return quantityFormatter_->setLocale(std::move(locale));
  announceChange(*this, "locale", [] {});
}

std::optional<std::string> RVFQuantityFormatter::stringForObjectValue(const id& value) {
  if (!quantityFormatter_) return std::nullopt;
  if (!value) return quantityFormatter_->stringForObjectValue(NSDecimalNumber::zero());
  return quantityFormatter_->stringForObjectValue(value);
}

std::optional<std::string> RVFQuantityFormatter::editingStringForObjectValue(const id& value) {
  if (!quantityFormatter_) return std::nullopt;
  return quantityFormatter_->editingStringForObjectValue(value);
}

bool RVFQuantityFormatter::getObjectValue(id* object, std::string_view forString,
                                          std::string* errorDescription) {
  return readRounded(quantityFormatter_, object, forString, errorDescription);
}

}  // namespace rvf
