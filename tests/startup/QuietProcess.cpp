// SPDX-License-Identifier: Apache-2.0
//
// A process that is linked against the library, and what it has after each step that did not ask
// for threads, descriptors or files. Prints every difference; status 1 if there is any.

#include <sys/stat.h>

#include <filesystem>
#include <iostream>
#include <set>
#include <string>
#include <string_view>

#include "Platform/Numbers/NSDecimalNumber.h"
#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/Runtime/NSAutoreleasePool.h"
#include "Platform/Runtime/Runtime.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/CardReading/RVFCreditCardParser.h"
#include "RVFoundation/Formatters/RVFCurrencyFormatter.h"
#include "RVFoundation/ServerDiscovery/RVFQMServerServiceBrowser.h"
#include "RVFoundation/Streaming/RVFStreamedSAXParser.h"

namespace {

namespace fs = std::filesystem;

std::set<std::string> entries(const char* folder) {
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder))
    names.insert(entry.path().filename().string());
  return names;
}

/// The open descriptors, but for the one that reads the folder.
std::set<std::string> descriptors() {
  std::set<std::string> open;
  for (const std::string& name : entries("/proc/self/fd")) {
    struct stat status {};
    if (::fstat(std::stoi(name), &status) == 0) open.insert(name);
  }
  return open;
}

class Watch {
 public:
  void check(std::string_view step) {
    const auto threads = entries("/proc/self/task").size();
    if (threads != 1) complain(step, std::to_string(threads) + " threads");
    const auto open = descriptors();
    for (const std::string& descriptor : open)
      if (!descriptorsAtStart_.contains(descriptor)) complain(step, "descriptor " + descriptor);
    if (!entries(".").empty()) complain(step, "a file in the current folder");
  }
  int status() const { return isQuiet_ ? 0 : 1; }

 private:
  void complain(std::string_view step, const std::string& what) {
    std::cout << step << ": " << what << '\n';
    isQuiet_ = false;
  }

  std::set<std::string> descriptorsAtStart_ = {"0", "1", "2"};
  bool isQuiet_ = true;
};

void useWhatNeedsNothing(Watch& watch) {
  using namespace rvf;
  const NSAutoreleasePool pool;
  objc_getClass("RVFQMServerService");
  watch.check("classes by name");
  RVFCurrencyFormatter::sharedCurrencyFormatter()->stringForObjectValue(box(1));
  watch.check("a money formatter");
  RVFCreditCardParser::cardParserForTrackData("%B4111111111111111^DOE/JOHN^3112101?");
  watch.check("a swipe");
  const auto parser = RVFStreamedSAXParser::init();
  watch.check("an XML parser");
  RVFQMServerServiceBrowser::serviceBrowser();
  watch.check("a browser that was not started");
}

}  // namespace

int main() {
  Watch watch;
  watch.check("before anything is used");
  useWhatNeedsNothing(watch);
  return watch.status();
}
