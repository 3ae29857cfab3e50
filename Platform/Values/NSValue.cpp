// SPDX-License-Identifier: Apache-2.0
#include "Platform/Values/NSValue.h"

#include <algorithm>
#include <functional>

#include "Platform/Runtime/AnyArgument.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSCopying.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSValue::classObject);

bool haveSameOwner(const std::weak_ptr<NSObject>& a, const std::weak_ptr<NSObject>& b) {
  return !a.owner_before(b) && !b.owner_before(a);
}

}  // namespace

NSValue::NSValue(std::span<const std::byte> bytes, std::string_view objCType)
    : bytes_(bytes.begin(), bytes.end()), objCType_(objCType) {}

Ref<NSValue> NSValue::valueWithNonretainedObject(const id& object) {
  const NSObject* address = object.get();
  Ref<NSValue> value = valueWithBytes(address, "^v");
  value->object_ = object;
  return value;
}

Class NSValue::classObject() {
  static const Class kClass = ClassBuilder<NSValue>("NSValue", NSObject::classObject())
                                  .method("copy", immutableCopyImplementation())
                                  .conformsTo("NSCopying")
                                  .registered();
  return kClass;
}

Class NSValue::isa() const {
  return classObject();
}

bool NSValue::isEqual(const NSObject* other) const {
  const auto* value = dynamic_cast<const NSValue*>(other);
  // Addresses are reused after destruction, so the owners must agree as well.
  return value && value->isa() == isa() && objCType_ == value->objCType_ &&
         bytes_ == value->bytes_ && haveSameOwner(object_, value->object_);
}

std::size_t NSValue::hash() const {
  return std::hash<std::string_view>()(
      {reinterpret_cast<const char*>(bytes_.data()), bytes_.size()});
}

id objectOfRecord(const RecordValue& record) {
  return std::make_shared<NSValue>(record.bytes, record.encoding);
}

RecordValue recordOfObject(const NSObject& object) {
  const auto* value = dynamic_cast<const NSValue*>(&object);
  return value ? RecordValue{value->bytes(), value->objCType(), nullptr} : RecordValue();
}

}  // namespace rvf
