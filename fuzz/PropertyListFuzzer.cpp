// SPDX-License-Identifier: Apache-2.0

// Property lists of any form, as files may hold them. What is read and can be written reads equal.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "Platform/Storage/NSPropertyListSerialization.h"

namespace {

using rvf::NSPropertyListFormat;
using Serialization = rvf::NSPropertyListSerialization;

rvf::id read(std::string_view bytes) {
  return Serialization::propertyListWithData(rvf::NSData::dataWithBytes(bytes));
}

/// Where a number or date is not a number, even two readings of the same bytes differ.
bool isFaithful(const rvf::id& root, std::string_view bytes) {
  const auto data = Serialization::dataWithPropertyList(root, NSPropertyListFormat::binary);
  if (!data || !rvf::objectsAreEqual(root, read(bytes))) return true;
  return rvf::objectsAreEqual(root, read(data->characters()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  rvf::Ref<rvf::NSError> error;
  const rvf::id root =
      Serialization::propertyListWithData(rvf::NSData::dataWithBytes(bytes), nullptr, &error);
  if ((root == nullptr) != (error != nullptr)) std::abort();
  if (!root) return 0;
  if (!isFaithful(root, bytes)) std::abort();
  const auto xml = Serialization::dataWithPropertyList(root, NSPropertyListFormat::xml);
  if (xml && !Serialization::propertyListWithData(xml)) std::abort();
  return 0;
}
