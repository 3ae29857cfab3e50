// SPDX-License-Identifier: Apache-2.0
#include "tests/startup/GreedyInitialiser.h"

#include <string>

namespace {

const std::string kText(100, 'x');

}  // namespace

const char* greedyText() {
  return kText.c_str();
}
