// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSArray.h"
#include "Platform/Values/NSData.h"
#include "Platform/Values/NSError.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/CoreServices/RVFErrors.h"
#include "RVFoundation/CoreServices/RVFRecoveryAttempterBlock.h"
#include "RVFoundation/Streaming/RVFStreamedSAXParser.h"
#include "RVFoundation/Text/NSString-RVFExtensions.h"

using namespace rvf;

namespace {

Ref<NSError> outOfPaper() {
  const auto attempter = RVFRecoveryAttempterBlock::recoveryAttempterWithHandler(
      [](const Ref<NSError>&, std::size_t option, Ref<NSError>*) {
        if (option == 0) std::cout << "printing again\n";
        return option == 0;
      });
  return NSError::errorWithDomain(
      "PrinterErrorDomain", 1,
      NSDictionary::dictionaryWithEntries({
          {NSLocalizedDescriptionKey, box("The printer is out of paper.")},
          {NSLocalizedRecoverySuggestionErrorKey, box("Put in a new roll.")},
          {NSRecoveryAttempterErrorKey, attempter},
      }));
}

/// Whether what failed has been done after all, by the option that the user chose.
bool present(const Ref<NSError>& error, std::size_t chosen) {
  std::cout << error->localizedDescription() << '\n'
            << error->localizedRecoverySuggestion().value_or("") << '\n';
  const auto attempter = std::dynamic_pointer_cast<RVFRecoveryAttempterBlock>(
      error->userInfo()->objectForKey(NSRecoveryAttempterErrorKey));
  return attempter && attempter->attemptRecoveryFromError(error, chosen);
}

}  // namespace

int main() {
  std::int32_t month = 0;
  std::int32_t year = 0;
  Ref<NSError> error;
  if (!getExpiryMonth("13/31", &month, &year, &error)) {
    const bool isMonth =
        error->domain() == RVFErrorDomain && error->code() == RVFExpiryMonthOutOfRangeError;
    std::cout << isMonth << ' ' << error->localizedDescription() << '\n';
  }

  const auto parser = RVFStreamedSAXParser::init();
  if (!parser->parseChunk(NSData::dataWithBytes("<a></b>"), &error)) {
    std::cout << error->domain() << ' ' << error->code() << '\n';
    std::cout << (error->underlyingError() ? "and what libxml2 said" : "for itself") << '\n';
  }

  const bool isRecovered = present(outOfPaper(), 0);
  std::cout << (isRecovered ? "recovered" : "given up") << '\n';

  try {
    NSArray::array()->objectAtIndex(0);
  } catch (const NSException& exception) {
    std::cout << exception.name() << '\n';
  }
}
