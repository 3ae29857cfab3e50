// SPDX-License-Identifier: Apache-2.0
//
// PropertyListProbe xml|binary: reads a property list of any form from standard input and writes it
// to standard output in the named one. Exit status 65 and the error's code on standard error if
// that fails.

#include <iostream>
#include <iterator>
#include <string>

#include "Platform/Storage/NSPropertyListSerialization.h"

int main(int argc, char** argv) {
  using namespace rvf;
  constexpr int kDataError = 65;
  const bool isXML = argc > 1 && std::string_view(argv[1]) == "xml";
  const std::string input((std::istreambuf_iterator<char>(std::cin)), {});
  Ref<NSError> error;
  const id root = NSPropertyListSerialization::propertyListWithData(NSData::dataWithBytes(input),
                                                                    nullptr, &error);
  const auto output =
      root ? NSPropertyListSerialization::dataWithPropertyList(
                 root, isXML ? NSPropertyListFormat::xml : NSPropertyListFormat::binary, &error)
           : nullptr;
  if (!output) {
    std::cerr << error->code() << "\n" << error->userInfo()->description() << "\n";
    return kDataError;
  }
  std::cout << output->characters() << std::flush;
  return std::cout ? 0 : kDataError;
}
