// SPDX-License-Identifier: Apache-2.0
#include "Platform/System/SystemControl.h"

#include <errno.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <optional>
#include <string_view>
#include <utility>

#include "Platform/Runtime/ScopeExit.h"

namespace rvf {
namespace {

struct CurrentSources {
  std::mutex mutex;
  SystemControlSources sources;
};

CurrentSources& current() {
  static CurrentSources sources;
  return sources;
}

SystemControlSources currentSources() {
  CurrentSources& kept = current();
  const std::lock_guard lock(kept.mutex);
  return kept.sources;
}

/// The first bytes of a file of the kernel, which hands them out in one piece, without the line's
/// end or the final NUL. Absent with `errno`.
std::optional<std::string> firstLine(const std::string& path) {
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return std::nullopt;
  const ScopeExit closed([descriptor] {
    const int problem = errno;
    ::close(descriptor);
    errno = problem;
  });
  std::array<char, 4096> buffer;  // filled by the next line
  ssize_t count = 0;
  do {
    count = ::read(descriptor, buffer.data(), buffer.size());
  } while (count < 0 && errno == EINTR);
  if (count < 0) return std::nullopt;
  const std::string_view bytes(buffer.data(), static_cast<std::size_t>(count));
  constexpr std::string_view kEnds("\n\0", 2);
  return std::string(bytes.substr(0, bytes.find_first_of(kEnds)));
}

/// A value's bytes; absent with `errno`.
using Value = std::optional<std::string>;

Value model() {
  const SystemControlSources sources = currentSources();
  Value text = firstLine(sources.productName);
  if (!text || text->empty()) text = firstLine(sources.deviceTreeModel);
  if (!text) return std::nullopt;
  errno = ENOENT;
  return text->empty() ? std::nullopt : Value(*text + '\0');
}

Value greatestSendBuffer() {
  const Value text = firstLine(currentSources().greatestSendBuffer);
  if (!text) return std::nullopt;
  std::uint32_t number = 0;
  const char* const end = text->data() + text->size();
  const auto [position, problem] = std::from_chars(text->data(), end, number);
  errno = EINVAL;
  if (problem != std::errc() || position != end) return std::nullopt;
  return std::string(reinterpret_cast<const char*>(&number), sizeof number);
}

struct Control {
  std::string_view name;
  std::array<int, 3> path;
  std::size_t levels;
  Value (*read)();
};

constexpr Control kControls[] = {
    {"hw.model", {6, 2}, 2, &model},
    {"kern.ipc.maxsockbuf", {1, 32, 1}, 3, &greatestSendBuffer},
};

int fail(int problem) {
  errno = problem;
  return -1;
}

int answer(const Control* control, void* oldp, std::size_t* oldlenp, bool isWriting) {
  if (control == std::end(kControls)) return fail(ENOENT);
  if (isWriting) return fail(EPERM);
  const Value value = control->read();
  if (!value) return -1;
  const std::size_t room = oldp && oldlenp ? *oldlenp : 0;
  if (oldlenp) *oldlenp = value->size();
  if (!oldp) return 0;
  if (room < value->size()) return fail(ENOMEM);
  std::memcpy(oldp, value->data(), value->size());
  return 0;
}

}  // namespace

void setSystemControlSources(SystemControlSources sources) {
  CurrentSources& kept = current();
  const std::lock_guard lock(kept.mutex);
  std::swap(kept.sources, sources);
}

int sysctlbyname(const char* name, void* oldp, std::size_t* oldlenp, const void* newp,
                 std::size_t newlen) {
  if (!name) return fail(EFAULT);
  const auto* const control = std::ranges::find(kControls, std::string_view(name), &Control::name);
  return answer(control, oldp, oldlenp, newp || newlen);
}

int sysctl(std::span<const int> name, void* oldp, std::size_t* oldlenp, const void* newp,
           std::size_t newlen) {
  const auto isMeant = [name](const Control& control) {
    return std::ranges::equal(std::span(control.path).first(control.levels), name);
  };
  return answer(std::ranges::find_if(kControls, isMeant), oldp, oldlenp, newp || newlen);
}

}  // namespace rvf
