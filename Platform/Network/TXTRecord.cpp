// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/TXTRecord.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include "Platform/Text/Text.h"
#include "Platform/Values/NSData.h"
#include "Platform/Values/NSNull.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

constexpr std::size_t kLongestString = 255;
constexpr std::size_t kLongestRecord = 65535;

void addEntry(NSDictionary::Entries& entries, std::string_view string) {
  const std::size_t separator = string.find('=');
  const std::string_view key = string.substr(0, separator);
  if (key.empty()) return;
  id value = NSNull::null();
  if (separator != std::string_view::npos) {
    value = NSData::dataWithBytes(string.substr(separator + 1));
  }
  entries.try_emplace(box(key), std::move(value));
}

/// "=" and the value, or nothing for a key that stands alone.
std::optional<std::string> encodedValue(const id& value) {
  if (std::dynamic_pointer_cast<NSNull>(value)) return std::string();
  if (const auto data = std::dynamic_pointer_cast<NSData>(value)) {
    return "=" + std::string(data->characters());
  }
  if (const auto text = unboxText(value)) return "=" + *text;
  return std::nullopt;
}

std::optional<std::string> encodedEntry(std::string_view key, const id& value) {
  if (key.empty() || key.find('=') != std::string_view::npos) return std::nullopt;
  const auto tail = encodedValue(value);
  if (!tail || key.size() + tail->size() > kLongestString) return std::nullopt;
  return std::string(key) + *tail;
}

/// The keys by UTF-16 code unit; absent if one is no text.
std::optional<std::vector<std::string>> sortedKeys(const NSDictionary& entries) {
  std::vector<std::string> keys;
  for (const auto& [key, value] : entries.entries()) {
    auto text = unboxText(key);
    if (!text) return std::nullopt;
    keys.push_back(std::move(*text));
  }
  std::sort(keys.begin(), keys.end(),
            [](const auto& a, const auto& b) { return compareUtf16(a, b) < 0; });
  return keys;
}

void append(std::vector<std::byte>& record, std::string_view string) {
  record.push_back(static_cast<std::byte>(string.size()));
  for (const char character : string)
    record.push_back(static_cast<std::byte>(character));
}

}  // namespace

Ref<NSDictionary> decodedTXTRecord(std::span<const std::byte> record) {
  NSDictionary::Entries entries;
  std::string_view rest(reinterpret_cast<const char*>(record.data()), record.size());
  while (!rest.empty()) {
    const auto length = static_cast<unsigned char>(rest.front());
    rest.remove_prefix(1);
    if (length > rest.size()) break;
    addEntry(entries, rest.substr(0, length));
    rest.remove_prefix(length);
  }
  return std::make_shared<NSDictionary>(std::move(entries));
}

std::optional<std::vector<std::byte>> encodedTXTRecord(const NSDictionary& entries) {
  const auto keys = sortedKeys(entries);
  if (!keys) return std::nullopt;
  std::vector<std::byte> record;
  for (const std::string& key : *keys) {
    const auto string = encodedEntry(key, entries.objectForKey(key));
    if (!string) return std::nullopt;
    append(record, *string);
  }
  if (record.empty()) record.push_back(std::byte{0});
  if (record.size() > kLongestRecord) return std::nullopt;
  return record;
}

}  // namespace rvf
