// SPDX-License-Identifier: Apache-2.0

// Property lists of any form, as files may hold them. What is read and can be written reads equal.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "Platform/Storage/NSPropertyListSerialization.h"

namespace {

using rvf::NSPropertyListFormat;
using Serialization = rvf::NSPropertyListSerialization;

/// A value that is no number equals nothing.
bool isFaithful(const rvf::id& root) {
  const auto data = Serialization::dataWithPropertyList(root, NSPropertyListFormat::binary);
  if (!data) return true;
  const rvf::id again = Serialization::propertyListWithData(data);
  return again && (rvf::objectsAreEqual(again, root) ||
                   root->description().find("nan") != std::string::npos);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  rvf::Ref<rvf::NSError> error;
  const rvf::id root =
      Serialization::propertyListWithData(rvf::NSData::dataWithBytes(bytes), nullptr, &error);
  if ((root == nullptr) != (error != nullptr)) std::abort();
  if (!root) return 0;
  if (!isFaithful(root)) std::abort();
  const auto xml = Serialization::dataWithPropertyList(root, NSPropertyListFormat::xml);
  if (xml && !Serialization::propertyListWithData(xml)) std::abort();
  return 0;
}
