// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/RVFDynamicPropertySynthesizer.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include "Platform/Runtime/Messaging.h"
#include "Platform/Values/NSNumber.h"
#include "tests/RVFoundation/RuntimeServices/DynamicPropertyStore.h"

namespace rvf {
namespace {

// What the table of accessors has for each type code.

struct AccessorRow {
  std::string_view code;
  std::string_view getterTypes;
  std::string_view setterTypes;
  /// Sets the values at the limits of the type, and what was stored and read for each.
  std::function<void(const Ref<Store>&, std::string_view code)> check;
};

std::ostream& operator<<(std::ostream& stream, const AccessorRow& row) {
  return stream << row.code;
}

template <class Value>
void checkValues(const Ref<Store>& store, std::string_view code) {
  using Limits = std::numeric_limits<Value>;
  for (const Value value : {Value{}, Value{1}, Limits::max(), Limits::lowest()}) {
    send(store, SEL("setP:"), value);
    EXPECT_EQ(send<Value>(store, SEL("p")), value);
    const auto stored = std::dynamic_pointer_cast<NSNumber>(store->values_->objectForKey("p"));
    ASSERT_NE(stored, nullptr);
    EXPECT_EQ(stored->objCType(), code);
    EXPECT_TRUE(stored->isEqual(box(value).get()));
  }
  store->values_->removeAllObjects();
  EXPECT_EQ(send<Value>(store, SEL("p")), Value{});
}

void checkObject(const Ref<Store>& store, std::string_view) {
  const id object = std::make_shared<NSObject>();
  send(store, SEL("setP:"), object);
  EXPECT_EQ(store->values_->objectForKey("p"), object);
  EXPECT_EQ(send<id>(store, SEL("p")), object);
}

class AccessorTable : public ::testing::TestWithParam<AccessorRow> {};

TEST_P(AccessorTable, BoxesAndUnboxesTheTypeOfItsCode) {
  const std::string code(GetParam().code);
  const auto store =
      std::make_shared<Store>(storeClass("Accessor" + code, {{"p", "T" + code + ",D,N"}}));
  GetParam().check(store, code);
}

TEST_P(AccessorTable, HasTheMethodTypesOfItsCode) {
  const std::string code(GetParam().code);
  EXPECT_EQ(Synthesizer::getterForType(code).typeEncoding(), GetParam().getterTypes);
  EXPECT_EQ(Synthesizer::setterForType(code).typeEncoding(), GetParam().setterTypes);
}

TEST_P(AccessorTable, IsReadByTheFirstCharacterOnly) {
  const std::string code(GetParam().code);
  EXPECT_EQ(Synthesizer::getterForType(code + "{x}"), Synthesizer::getterForType(code));
  EXPECT_EQ(Synthesizer::setterForType(code + "\"NSNoSuchClass\""),
            Synthesizer::setterForType(code));
}

TEST_P(AccessorTable, HasAnAccessorOfItsOwnForEachCode) {
  const std::string code(GetParam().code);
  for (const char other : std::string("@csSiIqQfd")) {
    if (code.front() == other) continue;
    EXPECT_NE(Synthesizer::getterForType(code), Synthesizer::getterForType({&other, 1})) << other;
    EXPECT_NE(Synthesizer::setterForType(code), Synthesizer::setterForType({&other, 1})) << other;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, AccessorTable,
    ::testing::Values(AccessorRow{"@", "@@:", "v@:@", &checkObject},
                      AccessorRow{"c", "c@:", "v@:c", &checkValues<bool>},
                      AccessorRow{"s", "s@:", "v@:s", &checkValues<short>},
                      AccessorRow{"S", "S@:", "v@:S", &checkValues<unsigned short>},
                      AccessorRow{"i", "i@:", "v@:i", &checkValues<int>},
                      AccessorRow{"I", "I@:", "v@:I", &checkValues<unsigned>},
                      AccessorRow{"q", "q@:", "v@:q", &checkValues<long>},
                      AccessorRow{"Q", "Q@:", "v@:Q", &checkValues<unsigned long>},
                      AccessorRow{"f", "f@:", "v@:f", &checkValues<float>},
                      AccessorRow{"d", "d@:", "v@:d", &checkValues<double>}));

class UnsupportedType : public ::testing::TestWithParam<std::string_view> {};

TEST_P(UnsupportedType, IsReportedWithItsCodeAndHasNoAccessor) {
  const std::string code(GetParam().substr(0, 1));
  const auto texts = reportsOf([] {
    EXPECT_FALSE(Synthesizer::getterForType(GetParam()));
    EXPECT_FALSE(Synthesizer::setterForType(GetParam()));
  });
  const std::string source = "] RVFoundation/RVFDynamicPropertySynthesizer:";
  EXPECT_EQ(texts,
            (std::vector<std::string>{"+[RVFDynamicPropertySynthesizer getterForType:" + source +
                                          "66 unsupported property type: " + code,
                                      "+[RVFDynamicPropertySynthesizer setterForType:" + source +
                                          "97 unsupported property type: " + code}));
}

TEST_P(UnsupportedType, RaisesByDefault) {
  const std::string code(GetParam().substr(0, 1));
  EXPECT_EQ(reasonOf([] { Synthesizer::getterForType(GetParam()); }),
            "NSInternalInconsistencyException: unsupported property type: " + code);
}

INSTANTIATE_TEST_SUITE_P(Codes, UnsupportedType,
                         ::testing::Values("B", "C", "l", "L", "{Point=dd}", "^v", ":", "#", "*",
                                           "v", "(u=i)", "[8c]", ""));

}  // namespace
}  // namespace rvf
