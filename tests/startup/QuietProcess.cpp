// SPDX-License-Identifier: Apache-2.0
//
// usage: QuietProcess [unwatched | noisy | lossy]
//
// A process that is linked against the library, and what it has after each step that did not ask
// for threads, descriptors or files. Prints every difference; status 1 if there is any. Files are
// looked for below the current folder, which is empty at the start.
//
//   unwatched   takes the same steps without looking, for a host that has descriptors of its own
//   noisy       asks for a thread, a run loop, a descriptor and files, each of which must be seen
//   lossy       loses a block of memory, for the tool that looks for such blocks

#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <latch>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <thread>

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

/// The threads, each with its name.
std::map<std::string, std::string> threads() {
  std::map<std::string, std::string> names;
  for (const auto& entry : fs::directory_iterator("/proc/self/task"))
    std::getline(std::ifstream(entry.path() / "comm"), names[entry.path().filename().string()]);
  return names;
}

/// The open descriptors, each with what it is open on; but for the one that reads the folder.
std::map<std::string, std::string> descriptors() {
  std::map<std::string, std::string> open;
  for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
    std::error_code error;
    open[entry.path().filename().string()] = fs::read_symlink(entry.path(), error).string();
  }
  std::erase_if(open, [](const auto& descriptor) {
    struct stat status {};
    return ::fstat(std::stoi(descriptor.first), &status) != 0;
  });
  return open;
}

class Watch {
 public:
  void check(std::string_view step) {
    const auto running = threads();
    for (const auto& [thread, name] : running)
      if (running.size() != 1) complain(step, "thread " + thread + " (" + name + ")");
    for (const auto& [descriptor, target] : descriptors())
      if (!kGivenDescriptors.contains(descriptor))
        complain(step, "descriptor " + descriptor + " (" + target + ")");
    for (const auto& entry : fs::recursive_directory_iterator("."))
      complain(step, "file " + entry.path().lexically_normal().string());
  }
  int status() const { return isQuiet_ ? 0 : 1; }

 private:
  void complain(std::string_view step, const std::string& what) {
    std::cout << step << ": " << what << '\n';
    isQuiet_ = false;
  }

  inline static const std::set<std::string> kGivenDescriptors = {"0", "1", "2"};
  bool isQuiet_ = true;
};

/// Looks at nothing.
struct NoWatch {
  void check(std::string_view) {}
};

void useWhatNeedsNothing(auto& watch) {
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

/// Asks for one of each kind, so that the watch has something to say.
void makeNoise(Watch& watch) {
  std::latch named(1);
  std::latch seen(1);
  const std::jthread thread([&] {
    ::pthread_setname_np(::pthread_self(), "noise");
    named.count_down();
    seen.wait();
  });
  named.wait();
  rvf::NSRunLoop::mainRunLoop();
  const int descriptor = ::open("/dev/zero", O_RDONLY | O_CLOEXEC);
  for (const char* variable :
       {"HOME", "TMPDIR", "XDG_CACHE_HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR"}) {
    const fs::path folder = fs::path(std::getenv(variable)) / "noise";
    fs::create_directories(folder);
    std::ofstream(folder / variable) << "noise";
  }
  watch.check("noise");
  seen.count_down();
  ::close(descriptor);
}

void loseMemory() {
  auto* volatile block = new std::array<char, 1000>;
  if (block) block = nullptr;
}

}  // namespace

int main(int argumentCount, char** arguments) {
  const std::string mode = argumentCount > 1 ? arguments[1] : "";
  if (mode == "lossy") {
    loseMemory();
    return 0;
  }
  if (mode == "unwatched") {
    NoWatch nobody;
    useWhatNeedsNothing(nobody);
    return 0;
  }
  Watch watch;
  watch.check("before anything is used");
  useWhatNeedsNothing(watch);
  if (mode == "noisy") makeNoise(watch);
  return watch.status();
}
