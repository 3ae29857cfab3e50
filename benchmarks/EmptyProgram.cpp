// SPDX-License-Identifier: Apache-2.0
//
// A C++ program that does nothing: what starting any process costs.

#include <iostream>

int main() {
  return std::cout.good() ? 0 : 1;
}
