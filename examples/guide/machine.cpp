// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include "Platform/Locale/NSLocale.h"
#include "Platform/Storage/NSPropertyListSerialization.h"
#include "Platform/Values/NSArray.h"
#include "Platform/Values/NSData.h"
#include "Platform/Values/NSDictionary.h"
#include "Platform/Values/NSNumber.h"
#include "RVFoundation/PlatformUtilities/RVFColumnWidthRegistry.h"
#include "RVFoundation/PlatformUtilities/RVFGridGeometry.h"
#include "RVFoundation/PlatformUtilities/RVFHardwareInfo.h"

using namespace rvf;

int main() {
  const RVFHardwareInfo machine;
  const bool isSmall = machine.ramInMegabytes()->longLongValue() < 64;
  const bool hasModel = !machine.hardwareModel().empty();  // "Unknown" where nobody can tell
  const bool hasSpace = machine.tcpSendSpace()->intValue() > 0;
  std::cout << isSmall << hasModel << hasSpace << '\n';

  const auto file = NSData::dataWithBytes(R"({ orders = {
      "Default Column Width" = 80;
      "Auto-Resize Width" = YES;
      Columns = { number = { "Default Column Width" = 60; "List Order" = 1; }; };
  }; })");
  const auto registry = std::make_shared<RVFColumnWidthRegistry>();
  registry->setRegistry(std::dynamic_pointer_cast<NSDictionary>(
      NSPropertyListSerialization::propertyListWithData(file)));
  const auto number = registry->columnWidthInfoForKey("number", "orders");
  const auto total = registry->columnWidthInfoForKey("total", "orders");
  std::cout << number->defaultWidth() << ' ' << total->defaultWidth() << ' ' << total->autoresize()
            << '\n';

  const RVFGridRect table{{2, 3}, {4, 2}};  // first cell, then columns and rows
  const RVFGridRect bar{{6, 3}, {1, 8}};
  std::cout << RVFIntersectsGridRect(table, bar) << '\n';  // side by side
  const auto kept =
      NSArray::arrayWithObjects({NSValue_RVFValueGeometryExtensions::RVF_valueWithGridRect(table)});
  const auto value = std::dynamic_pointer_cast<NSValue>(kept->firstObject());
  std::cout << RVF_gridRectValue(value).size.width << '\n';

  NSLocale::setCurrentLocaleIdentifier("de_DE");
  const auto locale = NSLocale::currentLocale();
  std::cout << locale->languageCode() << ' ' << locale->countryCode() << " 1"
            << locale->decimalSeparator() << "5\n";
}
