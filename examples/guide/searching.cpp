// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include "Platform/Predicates/NSPredicate.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/RuntimeServices/NSPredicate-RVFExtensions.h"

using namespace rvf;

int main() {
  const auto product = [](const char* name, int price) -> id {
    return NSDictionary::dictionaryWithEntries({{"name", box(name)}, {"price", box(price)}});
  };
  const auto products = NSArray::arrayWithObjects(
      {product("Red shoe", 40), product("Café crème", 4), product("Shoe, RÉD", 12)});

  const auto cheap = NSPredicate::predicateWithFormat("price < %d AND name != nil", 10);
  const auto found = filteredArrayUsingPredicate(products, *cheap);
  std::cout << found->description() << '\n';

  const auto search = NSPredicate::predicateWithFormat("name CONTAINS[cd] $S AND price > 10");
  const auto typed = NSDictionary::dictionaryWithEntries({{"S", box("shoe red")}});
  const auto filled = RVF_predicateWithMultiWordSubstitutionVariables(search, typed);
  std::cout << filled->predicateFormat() << '\n';
  std::cout << filteredArrayUsingPredicate(products, *filled)->count() << '\n';
}
