// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tools/terminal/ExitCode.h"

namespace rvf::tool {

struct SwipeOptions {
  bool asJson = false;
  bool isRevealed = false;      ///< account numbers whole; else only first six and last four digits
  bool isNameRequired = false;  ///< refuse a name that is not 2 to 26 characters long
  bool isCreditCard = false;    ///< read as a payment card, see `RVFCreditCardParser`
};

/// "rvf swipe": reads card swipes from standard input, one a line as a keyboard-wedge reader types
/// them, and prints their fields.
ExitCode swipeCommand(const SwipeOptions& options);

}  // namespace rvf::tool
