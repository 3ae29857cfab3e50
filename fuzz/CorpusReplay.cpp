// SPDX-License-Identifier: Apache-2.0
//
// The main program of a fuzz target where libFuzzer is not at hand: runs the target once with every
// file of the folders that are named. A target that finds something aborts, so the file's name is
// printed before. Fails without a file to run.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::vector<std::filesystem::path> filesIn(const char* folder) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder))
    if (entry.is_regular_file()) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

std::vector<std::uint8_t> bytesOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  stream.exceptions(std::ios::badbit | std::ios::failbit);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void replay(const std::filesystem::path& file) {
  std::cout << file.string() << std::endl;
  const auto bytes = bytesOf(file);
  LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

}  // namespace

int main(int argumentCount, char** arguments) {
  std::size_t fileCount = 0;
  for (int index = 1; index < argumentCount; ++index) {
    const auto files = filesIn(arguments[index]);
    std::for_each(files.begin(), files.end(), replay);
    fileCount += files.size();
  }
  return fileCount > 0 ? 0 : 1;
}
