// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include "Platform/Values/NSDictionary.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/ServerDiscovery/NSDictionary-RVFExtensions.h"
#include "RVFoundation/Text/NSString-RVFDigests.h"
#include "RVFoundation/Text/NSString-RVFEscaping.h"
#include "RVFoundation/Text/NSString-RVFExtensions.h"
#include "RVFoundation/Text/NSString-RVFPaths.h"
#include "RVFoundation/Text/NSString-RVFPlaceholders.h"
#include "RVFoundation/Text/NSString-RVFWords.h"

using namespace rvf;

int main() {
  const auto values =
      NSDictionary::dictionaryWithEntries({{"name", box("Ada")}, {"table", box("7 & 8")}});
  const std::string greeting = stringByReplacingPlaceholdersWithDictionaryValues(
      "Table %@(table) for %@(name)%@(title)", values);
  std::cout << greeting << '\n';

  std::cout << stringByEscapingXMLEntities(greeting) << '\n';
  std::cout << RVF_stringByEscapingForURLArgument("7 & 8").value_or("") << '\n';
  std::cout << RVF_URLEncodedDictionary(values).value_or("") << '\n';
  std::cout << RVF_stringByEscapingPredicateWildcards("50%_off*") << '\n';
  std::cout << RVF_cleanStringRemovingNewlinesAndTabs("two\n\tlines\n") << '\n';
  if (!RVF_stringByDecodingURLArguments("100%")) std::cout << "no escape\n";

  for (const auto& word : wordComponents("Don't mix 3.14 oz, please!"))
    std::cout << word << '\n';
  std::cout << RVF_occurrenceCountOfSubstring("1/2/3", "/") << '\n';

  std::cout << RVF_md5("till") << '\n';
  std::cout << relativePathWithFormat("/tmp", "till-%d.txt", 7) << '\n';
}
