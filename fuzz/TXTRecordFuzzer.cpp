// SPDX-License-Identifier: Apache-2.0

// TXT records as any host on the network may send them. What is decoded and encoded again reads
// the same.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "Platform/Network/NSNetService.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const auto record = rvf::NSData::dataWithBytes(bytes);
  const auto entries = rvf::NSNetService::dictionaryFromTXTRecordData(record);
  if ((entries == nullptr) != bytes.empty()) std::abort();
  const auto again = rvf::NSNetService::dataFromTXTRecordDictionary(entries);
  if (again &&
      !rvf::objectsAreEqual(entries, rvf::NSNetService::dictionaryFromTXTRecordData(again))) {
    std::abort();
  }
  return 0;
}
