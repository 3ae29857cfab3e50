// SPDX-License-Identifier: Apache-2.0
//
// The list of hand-entered servers on user defaults, loaded and saved, beside raw libplist that
// does equal work: it parses the same file and makes a text of every value of every record, or
// builds the same records and locks, writes, flushes and renames in the same sequence; both are
// checked to come to the same records first. The folder is $TMPDIR or /tmp.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <plist/plist.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "RVFoundation/ServerDiscovery/RVFStaticServerList.h"
#include "benchmarks/Measure.h"

namespace rvf {
namespace {

constexpr const char* kKeys[] = {"serverAddress", "serverDescription", "serverId"};

struct Record {
  std::string texts[3];
  bool operator==(const Record&) const = default;
};

std::vector<Record> recordsOf(const RVFStaticServerList& list) {
  std::vector<Record> records;
  for (std::size_t i = 0; i < list.serverCount(); ++i) {
    const auto server = list.serverAtIndex(i);
    records.push_back(
        {{*server->serverAddress(), *server->serverDescription(), *server->serverId()}});
  }
  return records;
}

void require(bool isTrue, const char* what) {
  if (!isTrue) throw std::runtime_error(what);
}

std::vector<Record> loadRaw(const std::string& path) {
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  struct stat status = {};
  require(file >= 0 && fstat(file, &status) == 0, "open");
  std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
  require(read(file, bytes.data(), bytes.size()) == status.st_size, "read");
  close(file);
  plist_t root = nullptr;
  plist_from_bin(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &root);
  const plist_t array = plist_dict_get_item(root, kStaticServersKey.data());
  std::vector<Record> records;
  plist_array_iter position = nullptr;
  plist_array_new_iter(array, &position);
  for (plist_t item = nullptr;;) {
    plist_array_next_item(array, position, &item);
    if (!item) break;
    Record record;
    for (std::size_t i = 0; i < 3; ++i)
      record.texts[i] = plist_get_string_ptr(plist_dict_get_item(item, kKeys[i]), nullptr);
    records.push_back(std::move(record));
  }
  free(position);
  plist_free(root);
  return records;
}

void saveRaw(const std::string& path, const std::vector<Record>& records) {
  const plist_t root = plist_new_dict();
  const plist_t array = plist_new_array();
  for (const Record& record : records) {
    const plist_t item = plist_new_dict();
    for (std::size_t i = 0; i < 3; ++i)
      plist_dict_set_item(item, kKeys[i], plist_new_string(record.texts[i].c_str()));
    plist_array_append_item(array, item);
  }
  plist_dict_set_item(root, kStaticServersKey.data(), array);
  char* bytes = nullptr;
  std::uint32_t length = 0;
  plist_to_bin(root, &bytes, &length);
  plist_free(root);
  const std::string folder = std::filesystem::path(path).parent_path();
  const int lock = open((path + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  require(flock(lock, LOCK_EX) == 0, "flock");
  const int file = open((path + ".new").c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  require(write(file, bytes, length) == static_cast<ssize_t>(length), "write");
  require(fsync(file) == 0, "fsync");
  close(file);
  require(rename((path + ".new").c_str(), path.c_str()) == 0, "rename");
  const int directory = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  require(fsync(directory) == 0, "fsync of the folder");
  close(directory);
  close(lock);
  free(bytes);
}

class StorageFixture {
 public:
  explicit StorageFixture(std::size_t count) {
    std::string folder = std::filesystem::temp_directory_path() / "StorageBenchmark.XXXXXX";
    folder_ = mkdtemp(folder.data());
    path_ = folder_ / "defaults.plist";
    rawPath_ = folder_ / "raw.plist";
    for (std::size_t i = 0; i < count; ++i) {
      const std::string number = std::to_string(i);
      records_.push_back(
          {{"10.1.2.3:" + number, "Till " + number,
            "0F0E0D0C-0B0A-0908-0706-" + std::string(12 - number.size(), '0') + number}});
    }
    saveRaw(path_, records_);
    saveRaw(rawPath_, records_);
    list_ = std::make_shared<RVFStaticServerList>(open());
    require(recordsOf(*list_) == records_ && loadRaw(rawPath_) == records_, "unequal lists");
    list_->save();
    require(loadRaw(path_) == records_, "unequal lists after saving");
  }
  ~StorageFixture() { std::filesystem::remove_all(folder_); }

  Ref<NSUserDefaults> open() const { return NSUserDefaults::userDefaultsWithFile(path_.string()); }
  /// From the file, as a process does that starts.
  void load() const { benchmark::DoNotOptimize(RVFStaticServerList(open()).serverCount()); }
  void loadRawly() const { benchmark::DoNotOptimize(loadRaw(rawPath_)); }
  void save() const { list_->save(); }
  void saveRawly() const { saveRaw(rawPath_, records_); }

 private:
  std::filesystem::path folder_;
  std::filesystem::path path_;
  std::string rawPath_;
  std::vector<Record> records_;
  Ref<RVFStaticServerList> list_;
};

template <void (StorageFixture::*work)() const>
void use(benchmark::State& state) {
  const StorageFixture fixture(static_cast<std::size_t>(state.range(0)));
  measure(state, [&] { (fixture.*work)(); });
}

void forServers(benchmark::internal::Benchmark* each) {
  each->ArgName("servers")->Arg(50)->Arg(5'000)->UseRealTime();
}
BENCHMARK(use<&StorageFixture::load>)->Name("load servers/ours")->Apply(&forServers);
BENCHMARK(use<&StorageFixture::loadRawly>)
    ->Name("load servers/limit: libplist")
    ->Apply(&forServers);
BENCHMARK(use<&StorageFixture::save>)->Name("save servers durably/ours")->Apply(&forServers);
BENCHMARK(use<&StorageFixture::saveRawly>)
    ->Name("save servers durably/limit: libplist, flushed")
    ->Apply(&forServers);

}  // namespace
}  // namespace rvf
