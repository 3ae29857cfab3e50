// SPDX-License-Identifier: Apache-2.0
#include "Platform/Predicates/PredicateFormatException.h"

#include "Platform/Text/Text.h"

namespace rvf {

PredicateFormatException::PredicateFormatException(std::string_view format, std::size_t byteOffset,
                                                   std::string_view problem)
    : NSException(NSInvalidArgumentException,
                  "Unable to parse the format string \"" + std::string(format) + "\""),
      position_(utf16Length(format.substr(0, byteOffset))),
      problem_(std::make_shared<const std::string>(problem)) {}

PredicateFormatException::~PredicateFormatException() = default;

}  // namespace rvf
