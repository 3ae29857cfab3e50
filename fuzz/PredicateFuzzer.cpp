// SPDX-License-Identifier: Apache-2.0
//
// Reads any bytes as a predicate: the result is a predicate or an `NSInvalidArgumentException`.
// What is read prints as a text that reads back as an equal predicate, substitutes, and evaluates
// to an answer or one of the exceptions that evaluation has.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "Platform/Observation/KeyValueCoding.h"
#include "Platform/Predicates/NSPredicate.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSArray.h"
#include "Platform/Values/NSDictionary.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace {

using namespace rvf;

/// Regular expressions may take any time by their nature.
constexpr bool isQuick(std::string_view format) {
  return format.find("MATCHES") == std::string_view::npos;
}

void requireReadingBack(const NSPredicate& predicate) {
  const std::string format = predicate.predicateFormat();
  const auto again = NSPredicate::predicateWithFormat(format);
  if (!again->isEqual(&predicate) || again->predicateFormat() != format) std::abort();
}

/// The second is what key-value coding raises where a key path leads through an object, a text for
/// one, that has no such key.
bool isRaisedByEvaluation(const NSException& exception) {
  return exception.name() == NSInvalidArgumentException ||
         exception.name() == NSUndefinedKeyException;
}

void evaluate(NSPredicate& predicate) {
  const auto object = NSDictionary::dictionaryWithEntries(
      {{"a", box(1)},
       {"name", box("Straße \xFF")},
       {"tags", NSArray::arrayWithObjects({box("x"), box(2.5)})}});
  const auto variables = NSDictionary::dictionaryWithEntries({{"S", box("a*")}, {"N", box(3)}});
  try {
    predicate.predicateWithSubstitutionVariables(variables)->evaluateWithObject(object);
  } catch (const NSException& exception) {
    if (!isRaisedByEvaluation(exception)) std::abort();
  }
}

void read(std::string_view format) {
  Ref<NSPredicate> predicate;
  try {
    // A key path from an argument need not read back, so none is given.
    predicate = NSPredicate::predicateWithFormat(format, 5, box("text"), nullptr, -1);
  } catch (const NSException& exception) {
    if (exception.name() != NSInvalidArgumentException) std::abort();
    return;
  }
  // Printing adds parentheses, so what nests deep may print as what nests too deep.
  constexpr std::size_t kShallow = 100;
  if (format.find("%K") == std::string_view::npos && predicate->depth() < kShallow)
    requireReadingBack(*predicate);
  if (isQuick(predicate->predicateFormat())) evaluate(*predicate);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  read({reinterpret_cast<const char*>(data), size});
  return 0;
}
