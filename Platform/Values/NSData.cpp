// SPDX-License-Identifier: Apache-2.0
#include "Platform/Values/NSData.h"

#include <functional>
#include <utility>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSCopying.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSData::classObject);

}  // namespace

NSData::NSData(std::vector<std::byte> bytes) noexcept
    : vector_(std::move(bytes)), bytes_(vector_) {}

NSData::NSData(std::unique_ptr<std::byte[]> buffer, std::size_t length) noexcept
    : buffer_(std::move(buffer)), bytes_(buffer_.get(), length) {}

Ref<NSData> NSData::data() {
  return std::make_shared<NSData>(std::vector<std::byte>());
}

Ref<NSData> NSData::dataWithBytes(std::span<const std::byte> bytes) {
  return std::make_shared<NSData>(std::vector<std::byte>(bytes.begin(), bytes.end()));
}

Ref<NSData> NSData::dataWithBytes(std::string_view bytes) {
  return dataWithBytes(std::as_bytes(std::span(bytes)));
}

Class NSData::classObject() {
  static const Class kClass = ClassBuilder<NSData>("NSData", NSObject::classObject())
                                  .method<&NSData::length>("length")
                                  .method("copy", immutableCopyImplementation())
                                  .conformsTo("NSCopying")
                                  .registered();
  return kClass;
}

Class NSData::isa() const {
  return classObject();
}

bool NSData::isEqual(const NSObject* other) const {
  const auto* data = dynamic_cast<const NSData*>(other);
  return data && characters() == data->characters();
}

std::size_t NSData::hash() const {
  return std::hash<std::string_view>()(characters());
}

std::string NSData::description() const {
  constexpr std::string_view kDigits = "0123456789abcdef";
  constexpr std::size_t kGroup = 4;
  std::string text = "<";
  for (std::size_t i = 0; i < bytes_.size(); ++i) {
    if (i > 0 && i % kGroup == 0) text += ' ';
    const auto byte = std::to_integer<unsigned>(bytes_[i]);
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text + ">";
}

}  // namespace rvf
