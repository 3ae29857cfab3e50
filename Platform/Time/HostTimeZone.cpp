// SPDX-License-Identifier: Apache-2.0
#include "Platform/Time/HostTimeZone.h"

#include <sys/stat.h>

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <set>
#include <sstream>
#include <string_view>
#include <system_error>
#include <tuple>
#include <utility>

#include "Platform/Time/ICUTimeZone.h"

namespace rvf {
namespace {

namespace fs = std::filesystem;

using Name = std::optional<std::string>;

constexpr std::uintmax_t kLargestZone = 1 << 20;  // bytes; zones have some thousands

std::int32_t distanceByTheCLibrary() {
  const std::time_t now = std::time(nullptr);
  std::tm local = {};
  return localtime_r(&now, &local) ? static_cast<std::int32_t>(local.tm_gmtoff) : 0;
}

/// "GMT+5" lies west of Greenwich in TZ and east of it in the library, which makes such zones up.
bool isDistance(std::string_view name) {
  return name.size() > 3 && name.substr(0, 3) == "GMT" && name != "GMT0" && name != "GMT+0" &&
         name != "GMT-0";
}

Name known(std::string_view name) {
  for (const std::string_view variant : {"posix/", "right/"}) {
    if (name.substr(0, variant.size()) == variant) name.remove_prefix(variant.size());
  }
  if (isDistance(name) || !icuTimeZone(name)) return std::nullopt;
  return std::string(name);
}

Name nameInPath(const fs::path& path) {
  constexpr std::string_view kFolder = "zoneinfo/";
  const std::string text = path.string();
  const std::size_t folder = text.rfind(kFolder);
  return folder == std::string::npos ? std::nullopt : known(text.substr(folder + kFolder.size()));
}

/// The name that the path, or what it is a link to, has among the zones' files. The nearest one
/// counts: it is the one that was chosen, and may itself be a link to another name.
Name nameOfLink(const fs::path& path) {
  std::error_code problem;
  if (Name name = nameInPath(path)) return name;
  if (Name name = nameInPath(fs::read_symlink(path, problem))) return name;
  return nameInPath(fs::canonical(path, problem));
}

std::string firstLine(const std::string& path) {
  std::ifstream file(path);
  std::string line;
  std::getline(file, line);
  return line.substr(0, line.find_last_not_of(" \t\r") + 1);
}

/// Empty if it cannot be read or is no zone's file by its size.
std::string bytesOf(const fs::path& path) {
  std::error_code problem;
  const std::uintmax_t size = fs::file_size(path, problem);
  if (problem || size > kLargestZone) return "";
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

bool hasBytes(const fs::path& path, const std::string& bytes) {
  std::error_code problem;
  return fs::is_regular_file(path, problem) && fs::file_size(path, problem) == bytes.size() &&
         bytesOf(path) == bytes;
}

/// The zones that the database lists for people to choose from, one for each region whose clocks
/// have agreed since 1970. Empty where the list is missing.
std::set<std::string> listedZones(const fs::path& zones) {
  std::set<std::string> names;
  std::ifstream file(zones / "zone1970.tab");
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with('#')) continue;
    std::istringstream columns(line);
    std::string countries, coordinates, name;
    if (columns >> countries >> coordinates >> name) names.insert(name);
  }
  return names;
}

/// How much there is against a name for some bytes that have several: the less, the better.
using Objections = std::tuple<bool, bool, bool, std::string>;

class ZoneSearch final {
 public:
  explicit ZoneSearch(const fs::path& zones) : zones_(zones), listed_(listedZones(zones)) {}

  /// The same each time, in whatever order the folder lists its files.
  Name best(const std::string& bytes) const {
    std::optional<Objections> least;
    std::error_code problem;
    constexpr auto kOptions = fs::directory_options::skip_permission_denied;
    for (fs::recursive_directory_iterator entry(zones_, kOptions, problem), end;
         !problem && entry != end; entry.increment(problem)) {
      if (!hasBytes(entry->path(), bytes)) continue;
      const std::string file = entry->path().lexically_relative(zones_).string();
      const Name name = known(file);
      if (name && (!least || objections(file, *name) < *least)) least = objections(file, *name);
    }
    return least ? Name(std::get<std::string>(*least)) : std::nullopt;
  }

 private:
  Objections objections(const std::string& file, const std::string& name) const {
    return {file != name, !listed_.contains(name), !isCanonicalZoneName(name), name};
  }

  fs::path zones_;
  std::set<std::string> listed_;
};

Name nameByBytes(const fs::path& file, const HostTimeZoneSources& sources) {
  const std::string bytes = bytesOf(file);
  if (bytes.empty()) return std::nullopt;
  const Name named = known(firstLine(sources.nameFile));
  if (named && hasBytes(fs::path(sources.zones) / *named, bytes)) return named;
  return ZoneSearch(sources.zones).best(bytes);
}

/// The last answer of `nameByBytes`, and what it was for.
class SearchedName final {
 public:
  Name of(const std::string& file, const HostTimeZoneSources& sources) {
    struct stat status = {};
    if (::stat(file.c_str(), &status) != 0) return std::nullopt;
    Key key(file, firstLine(sources.nameFile), sources.zones, status.st_dev, status.st_ino,
            status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec);
    const std::lock_guard lock(mutex_);
    if (key != key_) {
      name_ = nameByBytes(file, sources);
      key_ = std::move(key);
    }
    return name_;
  }

 private:
  using Key = std::tuple<std::string, std::string, std::string, dev_t, ino_t, off_t, time_t, long>;

  std::mutex mutex_;
  Key key_;
  Name name_;
};

Name nameOfFile(const std::string& path, const HostTimeZoneSources& sources) {
  static SearchedName searched;
  if (Name name = nameOfLink(path)) return name;
  return searched.of(path, sources);
}

Name nameOfVariable(std::string_view text, const HostTimeZoneSources& sources) {
  if (!text.empty() && text.front() == ':') text.remove_prefix(1);
  if (text.empty()) return "GMT";
  return text.front() == '/' ? nameOfFile(std::string(text), sources) : known(text);
}

}  // namespace

HostTimeZoneSources HostTimeZoneSources::ofDevice() {
  HostTimeZoneSources sources;
  // NOLINTNEXTLINE(concurrency-mt-unsafe): hosts that change TZ do so before they start threads
  if (const char* const variable = std::getenv("TZ")) sources.variable = variable;
  sources.distanceOfNow = &distanceByTheCLibrary;
  return sources;
}

std::string hostTimeZoneName(const HostTimeZoneSources& sources) {
  const Name name = sources.variable ? nameOfVariable(*sources.variable, sources)
                                     : nameOfFile(sources.localTime, sources);
  return name ? *name : timeZoneNameForOffset(sources.distanceOfNow());
}

}  // namespace rvf
