// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "Platform/Predicates/NSPredicate.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSArray.h"  // IWYU pragma: export
#include "Platform/Values/NSDictionary.h"
#include "Platform/Values/NSNumber.h"  // IWYU pragma: export
#include "Platform/Values/NSString.h"

namespace rvf {

template <class... Arguments>
Ref<NSPredicate> predicate(std::string_view format, const Arguments&... arguments) {
  return NSPredicate::predicateWithFormat(format, arguments...);
}

inline Ref<NSDictionary> record(NSDictionary::TextEntries entries) {
  return NSDictionary::dictionaryWithEntries(entries);
}

/// The name of the exception that a call raises, or "none".
template <class Call>
std::string raised(const Call& call) {
  try {
    call();
  } catch (const NSException& exception) {
    return exception.name();
  }
  return "none";
}

}  // namespace rvf
