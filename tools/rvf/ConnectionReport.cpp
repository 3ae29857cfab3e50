// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/ConnectionReport.h"

#include <sys/resource.h>

#include <iostream>

#include "Platform/Text/Format.h"

namespace rvf::tool {
namespace {

/// The most memory that this process has held, in KiB.
long peakMemoryKiB() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

void printJson(const ConnectionReport& report) {
  nlohmann::json value = jsonOf(report.finding);
  value["url"] = report.url;
  value["elements"] = report.answer.elementCount();
  value["products"] = report.answer.productCount();
  value["bytesReceived"] = report.answer.bytesReceived();
  value["bytesInflated"] = report.answer.bytesInflated();
  value["seconds"] = report.seconds;
  value["peakMemoryKiB"] = peakMemoryKiB();
  std::cout << jsonText(value) << "\n";
}

}  // namespace

void print(const ConnectionReport& report, bool asJson) {
  if (asJson) {
    printJson(report);
    return;
  }
  printText(report.finding);
  std::cout << "url          " << report.url << "\nelements     " << report.answer.elementCount()
            << "\nproducts     " << report.answer.productCount() << "\nreceived     "
            << report.answer.bytesReceived() << " bytes\ninflated     "
            << report.answer.bytesInflated() << " bytes\ntime         "
            << stringWithFormat("%.3f", report.seconds) << " s\npeak memory  "
            << stringWithFormat("%.1f", static_cast<double>(peakMemoryKiB()) / 1024) << " MiB\n";
}

}  // namespace rvf::tool
