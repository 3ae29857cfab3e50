// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/RecordReader.h"

#include <cstdint>
#include <utility>
#include <vector>

#include "Platform/Values/NSArray.h"
#include "Platform/Values/NSNull.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf::tool {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kDeepestRecord = 100;

id objectOf(const Json& json, int depth);

Ref<NSDictionary> dictionaryOf(const Json& json, int depth) {
  NSDictionary::Entries entries;
  for (const auto& [key, value] : json.items())
    entries.insert_or_assign(box(key), objectOf(value, depth + 1));
  return std::make_shared<NSDictionary>(std::move(entries));
}

Ref<NSArray> arrayOf(const Json& json, int depth) {
  std::vector<id> elements;
  elements.reserve(json.size());
  for (const Json& element : json)
    elements.push_back(objectOf(element, depth + 1));
  return NSArray::arrayWithObjects(std::move(elements));
}

id objectOf(const Json& json, int depth) {
  if (depth > kDeepestRecord)
    throw RecordError("nests deeper than " + std::to_string(kDeepestRecord) + " levels");
  switch (json.type()) {
    case Json::value_t::object:
      return dictionaryOf(json, depth);
    case Json::value_t::array:
      return arrayOf(json, depth);
    case Json::value_t::string:
      return box(json.get_ref<const std::string&>());
    case Json::value_t::boolean:
      return box(json.get<bool>());
    case Json::value_t::number_unsigned:
      return box(json.get<std::uint64_t>());
    case Json::value_t::number_integer:
      return box(json.get<std::int64_t>());
    case Json::value_t::number_float:
      return box(json.get<double>());
    default:
      return NSNull::null();
  }
}

}  // namespace

Ref<NSDictionary> recordOf(const nlohmann::ordered_json& json) {
  if (!json.is_object()) throw RecordError("is no JSON object");
  return dictionaryOf(json, 1);
}

}  // namespace rvf::tool
