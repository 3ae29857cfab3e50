// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/TypeEncoding.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <utility>
#include <vector>

#include "Platform/Runtime/NSObject.h"
#include "Platform/Values/NSError.h"

namespace rvf {
namespace {

enum class Signal : unsigned short { kRed, kGreen };
enum Plain : int { kPlain };
struct Point {
  long x;
  long y;
};

TEST(TypeEncoding, FollowsTheTable) {
  const std::vector<std::pair<std::string, std::string>> rows = {
      {typeEncoding<bool>(), "c"},
      {typeEncoding<char>(), "c"},
      {typeEncoding<signed char>(), "c"},
      {typeEncoding<unsigned char>(), "C"},
      {typeEncoding<short>(), "s"},
      {typeEncoding<unsigned short>(), "S"},
      {typeEncoding<int>(), "i"},
      {typeEncoding<unsigned>(), "I"},
      {typeEncoding<long>(), "q"},
      {typeEncoding<unsigned long>(), "Q"},
      {typeEncoding<long long>(), "q"},
      {typeEncoding<unsigned long long>(), "Q"},
      {typeEncoding<std::int64_t>(), "q"},
      {typeEncoding<float>(), "f"},
      {typeEncoding<double>(), "d"},
      {typeEncoding<Signal>(), "S"},
      {typeEncoding<Plain>(), "i"},
      {typeEncoding<void>(), "v"},
      {typeEncoding<id>(), "@"},
      {typeEncoding<const Ref<NSError>&>(), "@"},
      {typeEncoding<std::weak_ptr<NSObject>>(), "@"},
      {typeEncoding<std::string>(), "@"},
      {typeEncoding<std::string_view>(), "@"},
      {typeEncoding<std::optional<std::string>>(), "@"},
      {typeEncoding<std::function<void(int)>>(), "@?"},
      {typeEncoding<Class>(), "#"},
      {typeEncoding<SEL>(), ":"},
      {typeEncoding<const char*>(), "*"},
      {typeEncoding<char*>(), "*"},
      {typeEncoding<void*>(), "^v"},
      {typeEncoding<const void*>(), "^v"},
      {typeEncoding<Ref<NSError>*>(), "^@"},
      {typeEncoding<int**>(), "^^i"},
      {typeEncoding<void (*)(int)>(), "^?"},
      {typeEncoding<Point>(), "{?=}"},
      {typeEncoding<Point*>(), "^{?=}"},
  };
  for (std::size_t row = 0; row < rows.size(); ++row)
    EXPECT_EQ(rows[row].first, rows[row].second) << "row " << row;
}

}  // namespace
}  // namespace rvf
