// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <rapidcheck.h>

#include <map>
#include <optional>
#include <string>

#include "Platform/Network/NSNetService.h"
#include "Platform/Values/NSNull.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

using namespace std::string_literals;

/// Keys to values; no value is a key without "=".
using Entries = std::map<std::string, std::optional<std::string>>;

/// The record of these strings.
std::string record(std::initializer_list<std::string_view> strings) {
  std::string bytes;
  for (const std::string_view string : strings) {
    bytes += static_cast<char>(string.size());
    bytes += string;
  }
  return bytes;
}

std::optional<Entries> decoded(std::string_view bytes) {
  const auto dictionary = NSNetService::dictionaryFromTXTRecordData(NSData::dataWithBytes(bytes));
  if (!dictionary) return std::nullopt;
  Entries entries;
  for (const auto& [key, value] : dictionary->entries()) {
    const auto data = std::dynamic_pointer_cast<NSData>(value);
    entries[*unboxText(key)] = data ? std::optional(std::string(data->characters())) : std::nullopt;
  }
  return entries;
}

Ref<NSDictionary> dictionary(const Entries& entries) {
  NSDictionary::Entries values;
  for (const auto& [key, value] : entries) {
    id boxed = NSNull::null();
    if (value) boxed = NSData::dataWithBytes(*value);
    values[NSString::stringWithString(key)] = std::move(boxed);
  }
  return std::make_shared<NSDictionary>(std::move(values));
}

std::optional<std::string> encoded(const Ref<NSDictionary>& entries) {
  const auto data = NSNetService::dataFromTXTRecordDictionary(entries);
  return data ? std::optional(std::string(data->characters())) : std::nullopt;
}

TEST(TXTRecord, Decodes) {
  const struct {
    std::string bytes;
    Entries entries;
  } rows[] = {
      {record({"demo=1"}), {{"demo", "1"}}},
      {record({"demo= +01"}), {{"demo", " +01"}}},
      {record({"demo="}), {{"demo", ""}}},
      {record({"demo"}), {{"demo", std::nullopt}}},
      {record({"demo=\xFF"}), {{"demo", "\xFF"}}},
      {record({"demo=a=b"}), {{"demo", "a=b"}}},
      {record({"demo=1", "demo=0"}), {{"demo", "1"}}},
      {record({"demo", "demo=0"}), {{"demo", std::nullopt}}},
      {record({"Demo=1", "demo=0"}), {{"Demo", "1"}, {"demo", "0"}}},
      {record({"=1", "", "a=1"}), {{"a", "1"}}},
      {record({"=", ""}), {}},
      {"\0"s, {}},
      {record({"a=1"}) + "\x05"
                         "b=1",
       {{"a", "1"}}},
      {record({"a=1"}) + "\xFF", {{"a", "1"}}},
      {"\x01", {}},
      {record({"a=\0b"s}), {{"a", "\0b"s}}},
  };
  for (const auto& [bytes, entries] : rows) {
    EXPECT_EQ(decoded(bytes), entries) << testing::PrintToString(bytes);
  }
}

TEST(TXTRecord, NoBytesAreNotDecoded) {
  EXPECT_EQ(decoded(""), std::nullopt);
  EXPECT_EQ(NSNetService::dictionaryFromTXTRecordData(nullptr), nullptr);
}

TEST(TXTRecord, EncodesInTheOrderOfTheKeys) {
  EXPECT_EQ(encoded(dictionary({{"b", "1"}, {"a", ""}, {"c", std::nullopt}, {"Z", "x"}})),
            record({"Z=x", "a=", "b=1", "c"}));
}

TEST(TXTRecord, EncodesTextsAsWellAsData) {
  EXPECT_EQ(encoded(NSDictionary::dictionaryWithEntries({{"a", box("ü")}})), record({"a=ü"}));
}

TEST(TXTRecord, NoEntriesAreOneZeroByte) {
  EXPECT_EQ(encoded(dictionary({})), "\0"s);
}

TEST(TXTRecord, WhatDoesNotFitIsNotEncoded) {
  EXPECT_EQ(encoded(dictionary({{"a", std::string(253, 'x')}}))->size(), 256U);
  EXPECT_EQ(encoded(dictionary({{"a", std::string(254, 'x')}})), std::nullopt);
  EXPECT_EQ(encoded(dictionary({{"", "x"}})), std::nullopt);
  EXPECT_EQ(encoded(dictionary({{"a=b", "x"}})), std::nullopt);
  EXPECT_EQ(encoded(NSDictionary::dictionaryWithEntries({{"a", box(1)}})), std::nullopt);
  EXPECT_EQ(encoded(nullptr), std::nullopt);
}

TEST(TXTRecord, DecodingWhatWasEncodedGivesTheSame) {
  EXPECT_TRUE(rc::check([] {
    const auto keys = *rc::gen::container<std::vector<std::string>>(
        rc::gen::nonEmpty(rc::gen::container<std::string>(rc::gen::inRange('a', 'z'))));
    Entries entries;
    for (const auto& key : keys) {
      const auto value = *rc::gen::maybe(rc::gen::arbitrary<std::string>());
      if (key.size() + (value ? *value : "").size() < 255) {
        entries[key] = value ? std::optional(*value) : std::nullopt;
      }
    }
    const auto bytes = encoded(dictionary(entries));
    RC_ASSERT(bytes.has_value());
    RC_ASSERT(decoded(*bytes) == std::optional(entries));
  }));
}

TEST(TXTRecord, AnyBytesAreDecoded) {
  EXPECT_TRUE(rc::check(
      [](const std::string& bytes) { RC_ASSERT(decoded(bytes).has_value() == !bytes.empty()); }));
}

}  // namespace
}  // namespace rvf
