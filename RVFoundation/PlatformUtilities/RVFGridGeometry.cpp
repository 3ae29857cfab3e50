// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/PlatformUtilities/RVFGridGeometry.h"

#include <string_view>

namespace rvf {
namespace {

constexpr std::string_view kPairEncoding = "{?=qq}";
constexpr std::string_view kRectEncoding = "{?={?=qq}{?=qq}}";

/// Signed addition that wraps around.
constexpr std::int64_t farEdge(std::int64_t origin, std::int64_t extent) noexcept {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(origin) +
                                   static_cast<std::uint64_t>(extent));
}

template <class Record>
Record unboxed(const Ref<NSValue>& value) {
  Record record{};
  if (value) value->getValue(record);
  return record;
}

}  // namespace

bool RVFIntersectsGridRect(const RVFGridRect& a, const RVFGridRect& b) noexcept {
  return farEdge(a.origin.x, a.size.width) > b.origin.x &&
         a.origin.x < farEdge(b.origin.x, b.size.width) &&
         farEdge(a.origin.y, a.size.height) > b.origin.y &&
         a.origin.y < farEdge(b.origin.y, b.size.height);
}

Ref<NSValue> NSValue_RVFValueGeometryExtensions::RVF_valueWithGridRect(const RVFGridRect& rect) {
  return NSValue::valueWithBytes(rect, kRectEncoding);
}

Ref<NSValue> NSValue_RVFValueGeometryExtensions::RVF_valueWithGridSize(const RVFGridSize& size) {
  return NSValue::valueWithBytes(size, kPairEncoding);
}

Ref<NSValue> NSValue_RVFValueGeometryExtensions::RVF_valueWithGridPoint(const RVFGridPoint& point) {
  return NSValue::valueWithBytes(point, kPairEncoding);
}

RVFGridRect RVF_gridRectValue(const Ref<NSValue>& value) {
  return unboxed<RVFGridRect>(value);
}

RVFGridSize RVF_gridSizeValue(const Ref<NSValue>& value) {
  return unboxed<RVFGridSize>(value);
}

RVFGridPoint RVF_gridPointValue(const Ref<NSValue>& value) {
  return unboxed<RVFGridPoint>(value);
}

}  // namespace rvf
