// SPDX-License-Identifier: Apache-2.0
//
// StaticServerListProbe FILE: a list of servers on the user defaults in FILE, driven by lines of
// standard input, each answered by one line or more:
//
//   add ADDRESS          appends a server and saves; "1", or "0 CODE" if that was not written
//   sync                 the same without a change
//   fill BYTES           sets the key "filling" to data of this size, without saving
//   count                the number of servers
//   save COUNT SERVERS   saves so many times a list of SERVERS servers that are all described by
//                        the number of the time, and answers that number after each
//   share NAME COUNT     adds so many servers NAME-1, …, each with other processes locked out, and
//                        sets the keys NAME-1, …

#include <iostream>
#include <sstream>
#include <string>

#include "Platform/Values/NSNumber.h"
#include "RVFoundation/ServerDiscovery/RVFStaticServerList.h"

namespace {

using namespace rvf;

class Probe final {
 public:
  explicit Probe(const char* path)
      : defaults_(NSUserDefaults::userDefaultsWithFile(path)), list_(defaults_) {}

  void run() {
    for (std::string line; std::getline(std::cin, line);) {
      std::istringstream words(line);
      std::string command;
      std::string name;
      int count = 0;
      words >> command;
      if (command == "add" && words >> name) add(name);
      if (command == "sync") answer();
      if (command == "count") std::cout << list_.serverCount() << std::endl;
      if (command == "fill" && words >> count) fill(count);
      if (command == "save" && words >> count) save(words, count);
      if (command == "share" && words >> name >> count) share(name, count);
    }
  }

 private:
  void answer() {
    if (defaults_->synchronize()) {
      std::cout << "1" << std::endl;
    } else {
      const auto error = defaults_->synchronizationError();
      std::cout << "0 " << (error ? error->code() : -1) << std::endl;
    }
  }

  void add(const std::string& address) {
    list_.addServer(RVFStaticServer::staticServerWithAddress(address));
    answer();
  }

  void fill(int size) {
    defaults_->setObject(NSData::dataWithBytes(std::string(static_cast<std::size_t>(size), 'x')),
                         "filling");
    std::cout << "1" << std::endl;
  }

  void save(std::istream& words, int count) {
    int servers = 0;
    words >> servers;
    while (list_.serverCount() < static_cast<std::size_t>(servers))
      list_.addServer(RVFStaticServer::staticServerWithAddress("10.0.0.5"));
    for (int time = 1; time <= count; ++time) {
      for (std::size_t i = 0; i < list_.serverCount(); ++i)
        list_.serverAtIndex(i)->setServerDescription(std::to_string(time));
      list_.save();
      std::cout << time << std::endl;
    }
  }

  void share(const std::string& name, int count) {
    for (int number = 1; number <= count; ++number) {
      const std::string text = name + "-" + std::to_string(number);
      defaults_->performExclusively([&] {
        list_.load();
        list_.addServer(RVFStaticServer::staticServerWithAddress(text));
      });
      defaults_->setInteger(number, text);
      answer();
    }
  }

  const Ref<NSUserDefaults> defaults_;
  RVFStaticServerList list_;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 64;
  Probe(argv[1]).run();
  return 0;
}
