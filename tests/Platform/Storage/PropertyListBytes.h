// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Storage/NSPropertyListSerialization.h"

namespace rvf {

inline id read(std::string_view bytes, Ref<NSError>* error = nullptr) {
  return NSPropertyListSerialization::propertyListWithData(NSData::dataWithBytes(bytes), nullptr,
                                                           error);
}

inline std::string xml(std::string_view body) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" + std::string(body) +
         "</plist>\n";
}

/// A binary list of the given objects with offsets and references of one byte; the first is the
/// root.
inline std::string binary(const std::vector<std::string>& objects) {
  std::string bytes = "bplist00";
  std::string table;
  for (const std::string& object : objects) {
    table += static_cast<char>(bytes.size());
    bytes += object;
  }
  const auto start = static_cast<char>(bytes.size());
  bytes += table;
  bytes.append(6, '\0').append({1, 1});
  bytes.append(7, '\0').append({static_cast<char>(objects.size())});
  bytes.append(8, '\0').append(7, '\0').append({start});
  return bytes;
}

inline void expectRefused(std::string_view bytes) {
  Ref<NSError> error;
  EXPECT_FALSE(read(bytes, &error)) << testing::PrintToString(bytes);
  ASSERT_TRUE(error) << testing::PrintToString(bytes);
  EXPECT_EQ(error->domain(), "NSCocoaErrorDomain");
  EXPECT_EQ(error->code(), 3840);
}

inline std::string written(const id& object, NSPropertyListFormat format) {
  const auto data = NSPropertyListSerialization::dataWithPropertyList(object, format);
  return data ? std::string(data->characters()) : "";
}

/// A number in so many bytes.
inline std::string word(std::size_t value, std::size_t size) {
  std::string bytes(size, '\0');
  for (; size-- > 0; value >>= 8U)
    bytes[size] = static_cast<char>(value & 0xFFU);
  return bytes;
}

}  // namespace rvf
