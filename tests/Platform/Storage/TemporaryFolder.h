// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace rvf {

/// A new folder, removed with its owner.
class TemporaryFolder final {
 public:
  TemporaryFolder() {
    std::string folder = std::filesystem::temp_directory_path() / "Storage.XXXXXX";
    path_ = mkdtemp(folder.data());
  }
  ~TemporaryFolder() { std::filesystem::remove_all(path_); }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& path() const noexcept { return path_; }
  std::string file(std::string_view name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

inline std::string bytesOf(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

inline void writeBytes(const std::string& file, std::string_view bytes) {
  std::ofstream(file, std::ios::binary) << bytes;
}

}  // namespace rvf
