// SPDX-License-Identifier: Apache-2.0
#include "Platform/System/LogFacility.h"

namespace rvf {
namespace {

struct Facility {
  std::string_view name;
  int number;
};

constexpr Facility kFacilities[] = {
    {"kern", 1},     {"user", 1},      {"mail", 2},    {"daemon", 3},  {"auth", 4},
    {"security", 4}, {"syslog", 5},    {"lpr", 6},     {"news", 7},    {"uucp", 8},
    {"cron", 9},     {"authpriv", 10}, {"ftp", 11},    {"local0", 16}, {"local1", 17},
    {"local2", 18},  {"local3", 19},   {"local4", 20}, {"local5", 21}, {"local6", 22},
    {"local7", 23},
};

}  // namespace

std::optional<int> logFacilityNumber(std::string_view name) {
  for (const Facility& facility : kFacilities) {
    if (facility.name == name) return facility.number;
  }
  return std::nullopt;
}

}  // namespace rvf
