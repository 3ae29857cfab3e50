// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Text/ErrorWithCode.h"

#include "Platform/Runtime/NSAssertionHandler.h"
#include "Platform/Values/NSMutableDictionary.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/CoreServices/RVFErrors.h"

namespace rvf {
namespace {

/// Assertions of the text extensions name their source so, without a line.
constexpr std::string_view kSource = "RVFoundation/NSString-RVFExtensions";
constexpr int kNoLine = 0;

}  // namespace

Ref<NSError> ErrorWithCode(long code, std::optional<std::string_view> message,
                           std::optional<std::string_view> suggestion) {
  if (!message) failAssertion("ErrorWithCode", kSource, kNoLine, "message!=nil");
  const auto userInfo = NSMutableDictionary::dictionary();
  userInfo->setObject(box(*message), NSLocalizedDescriptionKey);
  if (suggestion) userInfo->setObject(box(*suggestion), NSLocalizedRecoverySuggestionErrorKey);
  return NSError::errorWithDomain(RVFErrorDomain, code, userInfo->copy());
}

}  // namespace rvf
