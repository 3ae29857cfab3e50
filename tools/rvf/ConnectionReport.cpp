// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/ConnectionReport.h"

#include <sys/resource.h>

#include <cstdio>
#include <iostream>

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
  std::printf(
      "url          %s\nelements     %llu\nproducts     %llu\nreceived     %llu bytes\n"
      "inflated     %llu bytes\ntime         %.3f s\npeak memory  %.1f MiB\n",
      report.url.c_str(), static_cast<unsigned long long>(report.answer.elementCount()),
      static_cast<unsigned long long>(report.answer.productCount()),
      static_cast<unsigned long long>(report.answer.bytesReceived()),
      static_cast<unsigned long long>(report.answer.bytesInflated()), report.seconds,
      static_cast<double>(peakMemoryKiB()) / 1024);
}

}  // namespace rvf::tool
