// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <utility>

namespace rvf {

using CatalogueEntries = std::map<std::string, std::string>;  // in order of the keys

/// The entry that every catalogue has under the empty key.
inline constexpr const char* kCatalogueHeader = "Content-Type: text/plain; charset=UTF-8\n";

/// The bytes of a catalogue without hash table (GNU gettext manual, "The Format of GNU MO Files").
inline std::string catalogueOf(const CatalogueEntries& entries) {
  constexpr std::uint32_t kHeaderSize = 28;
  const auto count = static_cast<std::uint32_t>(entries.size());
  std::string table(kHeaderSize + 16 * count, '\0');
  const auto put = [&table](std::size_t offset, std::size_t value) {
    const auto word = static_cast<std::uint32_t>(value);
    std::memcpy(table.data() + offset, &word, sizeof word);
  };
  put(0, 0x950412DE);
  put(8, count);
  put(12, kHeaderSize);
  put(16, kHeaderSize + 8 * count);
  std::size_t at = kHeaderSize;
  for (const auto& [key, text] : entries) {
    for (const auto& [offset, part] : {std::pair(at, key), std::pair(at + 8 * count, text)}) {
      put(offset, part.size());
      put(offset + 4, table.size());
      table += part + '\0';
    }
    at += 8;
  }
  return table;
}

/// Stores a table's catalogue where a bundle with this catalogue folder looks for it.
inline void writeCatalogue(const std::filesystem::path& catalogueFolder, const std::string& locale,
                           const std::string& table, const std::string& bytes) {
  const auto folder = catalogueFolder / locale / "LC_MESSAGES";
  std::filesystem::create_directories(folder);
  std::ofstream(folder / (table + ".mo"), std::ios::binary) << bytes;
}

}  // namespace rvf
