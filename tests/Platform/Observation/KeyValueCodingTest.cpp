// SPDX-License-Identifier: Apache-2.0
#include "Platform/Observation/KeyValueCoding.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/Pointers.h"
#include "Platform/Values/NSMutableArray.h"
#include "Platform/Values/NSMutableDictionary.h"
#include "Platform/Values/NSNull.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSSet.h"
#include "Platform/Values/NSString.h"
#include "tests/Platform/Observation/ForwardingObject.h"

namespace rvf {

struct CodedPoint {
  std::int64_t x = 0;
  std::int64_t y = 0;
};
template <>
inline constexpr std::string_view kRecordEncoding<CodedPoint> = "{CodedPoint=qq}";

namespace {

std::string textAt(NSObject& object, std::string_view keyPath) {
  return unboxText(valueForKeyPath(object, keyPath)).value_or("(absent)");
}

/// The name and reason of what `action` raises.
template <class Action>
std::pair<std::string, std::string> raisedBy(Action action) {
  try {
    action();
  } catch (const NSException& exception) {
    return {exception.name(), exception.reason()};
  }
  return {"nothing", ""};
}

/// One property of every scalar type, with getter and setter.
class Scalars final : public NSObject {
 public:
  static Class classObject();
  Class isa() const override { return classObject(); }

  template <auto Member>
  auto get() const {
    return this->*Member;
  }
  template <auto Member, class T>
  void set(T value) {
    this->*Member = value;
  }

  bool flag = false;
  signed char character = 0;
  unsigned char byte = 0;
  short small = 0;
  unsigned short unsignedSmall = 0;
  int number = 0;
  unsigned unsignedNumber = 0;
  long big = 0;
  unsigned long unsignedBig = 0;
  float single = 0;
  double fraction = 0;
  CodedPoint point;
};

template <class T, T Scalars::*Member>
void addProperty(ClassBuilder<Scalars>& builder, const std::string& getter,
                 const std::string& setter) {
  builder.method<&Scalars::get<Member>>(getter);
  builder.method<&Scalars::set<Member, T>>(setter);
}

Class Scalars::classObject() {
  static const Class kClass = [] {
    ClassBuilder<Scalars> builder("CodedScalars", NSObject::classObject());
    addProperty<bool, &Scalars::flag>(builder, "isFlag", "setFlag:");
    addProperty<signed char, &Scalars::character>(builder, "character", "setCharacter:");
    addProperty<unsigned char, &Scalars::byte>(builder, "byte", "setByte:");
    addProperty<short, &Scalars::small>(builder, "small", "setSmall:");
    addProperty<unsigned short, &Scalars::unsignedSmall>(builder, "unsignedSmall",
                                                         "setUnsignedSmall:");
    addProperty<int, &Scalars::number>(builder, "number", "setNumber:");
    addProperty<unsigned, &Scalars::unsignedNumber>(builder, "unsignedNumber",
                                                    "setUnsignedNumber:");
    addProperty<long, &Scalars::big>(builder, "big", "setBig:");
    addProperty<unsigned long, &Scalars::unsignedBig>(builder, "unsignedBig", "setUnsignedBig:");
    addProperty<float, &Scalars::single>(builder, "single", "setSingle:");
    addProperty<double, &Scalars::fraction>(builder, "fraction", "setFraction:");
    addProperty<CodedPoint, &Scalars::point>(builder, "point", "setPoint:");
    return builder.registered();
  }();
  return kClass;
}

struct ScalarRow {
  std::string key;
  id value;
  std::string typeCode;
};

std::ostream& operator<<(std::ostream& stream, const ScalarRow& row) {
  return stream << row.key << " = " << row.value->description();
}

class CodedScalar : public testing::TestWithParam<ScalarRow> {};

TEST_P(CodedScalar, IsUnboxedAndBoxedByItsTypeCode) {
  const auto object = std::make_shared<Scalars>();
  setValueForKey(*object, GetParam().value, GetParam().key);
  const id read = valueForKey(*object, GetParam().key);
  EXPECT_TRUE(objectsAreEqual(read, GetParam().value)) << read->description();
  EXPECT_EQ(std::dynamic_pointer_cast<NSValue>(read)->objCType(), GetParam().typeCode);
}

TEST_P(CodedScalar, RefusesAbsence) {
  const auto object = std::make_shared<Scalars>();
  const auto [name, reason] = raisedBy([&] { setValueForKey(*object, nullptr, GetParam().key); });
  EXPECT_EQ(name, NSInvalidArgumentException);
  EXPECT_EQ(reason, "[<CodedScalars " + pointerText(object.get()) +
                        "> setNilValueForKey:]: could not set nil as the value for the key " +
                        GetParam().key + ".");
}

INSTANTIATE_TEST_SUITE_P(
    OfEveryType, CodedScalar,
    testing::Values(ScalarRow{"flag", box(true), "c"}, ScalarRow{"character", box(-5), "c"},
                    ScalarRow{"byte", box(250), "C"}, ScalarRow{"small", box(-30000), "s"},
                    ScalarRow{"unsignedSmall", box(60000), "S"},
                    ScalarRow{"number", box(std::numeric_limits<int>::min()), "i"},
                    ScalarRow{"unsignedNumber", box(4000000000U), "I"},
                    ScalarRow{"big", box(std::numeric_limits<long>::min()), "q"},
                    ScalarRow{"unsignedBig", box(std::numeric_limits<unsigned long>::max()), "Q"},
                    ScalarRow{"single", box(0.5F), "f"}, ScalarRow{"fraction", box(0.1), "d"},
                    ScalarRow{"point",
                              NSValue::valueWithBytes(CodedPoint{3, -4}, "{CodedPoint=qq}"),
                              "{CodedPoint=qq}"}),
    [](const auto& row) { return row.param.key; });

TEST(KeyValueCoding, ANumberIsReadAsTheTypeOfItsKey) {
  const auto object = std::make_shared<Scalars>();
  setValueForKey(*object, box(2.9), "number");
  EXPECT_EQ(object->number, 2);
  setValueForKey(*object, box(256 + 7), "byte");
  EXPECT_EQ(object->byte, 7);
  setValueForKey(*object, box(7), "flag");
  EXPECT_TRUE(object->flag);
  setValueForKey(*object, box(3), "fraction");
  EXPECT_EQ(object->fraction, 3.0);
}

TEST(KeyValueCoding, ATextGivenForAScalarIsReadAsANumber) {
  const auto object = std::make_shared<Scalars>();
  setValueForKey(*object, box("12abc"), "number");
  setValueForKey(*object, box("1.5"), "fraction");
  setValueForKey(*object, box("yes"), "flag");
  EXPECT_EQ(object->number, 12);
  EXPECT_EQ(object->fraction, 1.5);
  EXPECT_TRUE(object->flag);
}

TEST(KeyValueCoding, AnObjectWithoutSuchAReadingIsRefused) {
  const auto object = std::make_shared<Scalars>();
  const id list = NSArray::array();
  const auto [name, reason] = raisedBy([&] { setValueForKey(*object, list, "number"); });
  EXPECT_EQ(name, NSInvalidArgumentException);
  EXPECT_EQ(reason, "-[NSArray intValue]: unrecognized selector sent to instance " +
                        pointerText(list.get()));
}

TEST(KeyValueCoding, ARecordOfAnotherEncodingIsRefused) {
  const auto object = std::make_shared<Scalars>();
  const id other = NSValue::valueWithBytes(CodedPoint{1, 2}, "{Other=qq}");
  for (const id& value : std::vector<id>{other, box(5), box("text")}) {
    EXPECT_EQ(raisedBy([&] { setValueForKey(*object, value, "point"); }).first,
              NSInvalidArgumentException)
        << value->description();
  }
  EXPECT_EQ(object->point.x, 0);
}

/// Answers one key each through one form of accessor.
class Forms final : public NSObject {
 public:
  static Class classObject();
  Class isa() const override { return classObject(); }

  std::string a() const { return "a"; }
  std::string getB() const { return "getB"; }
  std::string b() const { return "b"; }
  std::string c() const { return "c"; }
  std::string isC() const { return "isC"; }
  std::string isD() const { return "isD"; }
  std::string underscoredD() const { return "_d"; }
  std::string underscoredE() const { return "_e"; }
  void run() { hasRun = true; }
  const void* pointer() const { return this; }
  void setX(std::string_view text) { x = std::string(text) + " by setX:"; }
  void underscoredSetX(std::string_view) { x = "by _setX:"; }
  void underscoredSetY(std::string_view text) { y = std::string(text) + " by _setY:"; }

  bool hasRun = false;
  std::string x;
  std::string y;
  std::string e = "variable";
  std::string f1 = "_f";
  std::string f2 = "_isF";
  std::string g1 = "_isG";
  std::string g2 = "g";
  std::string h1 = "h";
  std::string h2 = "isH";
  std::string i = "isI";
};

Class Forms::classObject() {
  static const Class kClass = ClassBuilder<Forms>("CodedForms", NSObject::classObject())
                                  .method<&Forms::a>("a")
                                  .method<&Forms::getB>("getB")
                                  .method<&Forms::b>("b")
                                  .method<&Forms::c>("c")
                                  .method<&Forms::isC>("isC")
                                  .method<&Forms::isD>("isD")
                                  .method<&Forms::underscoredD>("_d")
                                  .method<&Forms::underscoredE>("_e")
                                  .method<&Forms::run>("run")
                                  .method<&Forms::pointer>("pointer")
                                  .method<&Forms::setX>("setX:")
                                  .method<&Forms::underscoredSetX>("_setX:")
                                  .method<&Forms::underscoredSetY>("_setY:")
                                  .ivar<&Forms::e>("_e")
                                  .ivar<&Forms::f1>("_f")
                                  .ivar<&Forms::f2>("_isF")
                                  .ivar<&Forms::g1>("_isG")
                                  .ivar<&Forms::g2>("g")
                                  .ivar<&Forms::h1>("h")
                                  .ivar<&Forms::h2>("isH")
                                  .ivar<&Forms::i>("isI")
                                  .ivar<&Forms::x>("x")
                                  .ivar("listed", "i")
                                  .registered();
  return kClass;
}

struct FormRow {
  std::string key;
  std::string answer;
};

class CodedForm : public testing::TestWithParam<FormRow> {};

TEST_P(CodedForm, IsFoundInItsOrder) {
  const auto object = std::make_shared<Forms>();
  EXPECT_EQ(textAt(*object, GetParam().key), GetParam().answer);
}

INSTANTIATE_TEST_SUITE_P(OfReading, CodedForm,
                         testing::Values(FormRow{"a", "a"}, FormRow{"b", "getB"}, FormRow{"c", "c"},
                                         FormRow{"d", "isD"}, FormRow{"e", "_e"},
                                         FormRow{"f", "_f"}, FormRow{"g", "_isG"},
                                         FormRow{"h", "h"}, FormRow{"i", "isI"}),
                         [](const auto& row) { return row.param.key; });

TEST(KeyValueCoding, TheSetterComesBeforeTheUnderscoredOneAndTheVariable) {
  const auto object = std::make_shared<Forms>();
  setValueForKey(*object, box("text"), "x");
  setValueForKey(*object, box("text"), "y");
  EXPECT_EQ(object->x, "text by setX:");
  EXPECT_EQ(object->y, "text by _setY:");
}

TEST(KeyValueCoding, VariablesAreSetInTheSameOrder) {
  const auto object = std::make_shared<Forms>();
  for (const char* key : {"f", "g", "h", "i"})
    setValueForKey(*object, box("new"), key);
  EXPECT_EQ(object->f1 + object->g1 + object->h1 + object->i, "newnewnewnew");
  EXPECT_EQ(object->f2 + object->g2 + object->h2, "_isFgisH");
}

TEST(KeyValueCoding, WhatHasNoObjectFormIsNoAccessor) {
  const auto object = std::make_shared<Forms>();
  for (const char* key : {"run", "pointer", "listed", "class"}) {
    EXPECT_EQ(raisedBy([&] { valueForKey(*object, key); }).first, NSUndefinedKeyException) << key;
  }
  EXPECT_FALSE(object->hasRun);
}

/// Has a block with arguments and a result.
class Blocks final : public NSObject {
 public:
  using Block = std::function<int(int)>;
  static Class classObject() {
    static const Class kClass = ClassBuilder<Blocks>("CodedBlocks", NSObject::classObject())
                                    .method<&Blocks::block>("block")
                                    .method<&Blocks::setBlock>("setBlock:")
                                    .ivar<&Blocks::other>("other")
                                    .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

  const Block& block() const { return block_; }
  void setBlock(Block block) { block_ = std::move(block); }
  Block other;

 private:
  Block block_ = [](int number) { return number + 1; };
};

TEST(KeyValueCoding, ABlockIsHandedOn) {
  const auto from = std::make_shared<Blocks>();
  const auto to = std::make_shared<Blocks>();
  setValueForKey(*to, valueForKey(*from, "block"), "other");
  EXPECT_EQ(to->other(1), 2);
  setValueForKey(*to, nullptr, "block");
  EXPECT_FALSE(to->block());
  setValueForKey(*to, valueForKey(*to, "other"), "block");
  EXPECT_EQ(to->block()(2), 3);
}

TEST(KeyValueCoding, ABlockOfAnotherSignatureIsRefused) {
  class Others final : public NSObject {
   public:
    static Class classObject() {
      static const Class kClass = ClassBuilder<Others>("CodedOthers", NSObject::classObject())
                                      .ivar<&Others::action>("action")
                                      .registered();
      return kClass;
    }
    Class isa() const override { return classObject(); }
    std::function<void()> action;
  };
  const auto blocks = std::make_shared<Blocks>();
  const auto others = std::make_shared<Others>();
  for (const id& value : std::vector<id>{valueForKey(*others, "action"), box("text"), box(1)}) {
    EXPECT_EQ(raisedBy([&] { setValueForKey(*blocks, value, "block"); }).first,
              NSInvalidArgumentException);
  }
}

TEST(KeyValueCoding, AnUnknownKeyIsRaised) {
  const auto object = std::make_shared<Forms>();
  const std::string instance = "[<CodedForms " + pointerText(object.get()) + "> ";
  const std::string text = ": this class is not key value coding-compliant for the key nothing.";
  const auto read = raisedBy([&] { valueForKey(*object, "nothing"); });
  EXPECT_EQ(read.first, "NSUndefinedKeyException");
  EXPECT_EQ(read.second, instance + "valueForUndefinedKey:]" + text);
  const auto written = raisedBy([&] { setValueForKey(*object, box(1), "nothing"); });
  EXPECT_EQ(written.first, "NSUndefinedKeyException");
  EXPECT_EQ(written.second, instance + "setValue:forUndefinedKey:]" + text);
}

TEST(KeyValueCoding, TheEmptyKeyIsUnknown) {
  const auto object = std::make_shared<Forms>();
  for (const char* path : {"", ".", "self.", ".self", "self..self"}) {
    EXPECT_EQ(raisedBy([&] { valueForKeyPath(*object, path); }).first, NSUndefinedKeyException)
        << path;
  }
}

TEST(KeyValueCoding, AnAccessorThatIsAddedLaterIsFound) {
  class Grown final : public NSObject {
   public:
    static Class classObject() {
      static const Class kClass = ClassBuilder<Grown>("CodedGrown", NSObject::classObject())
                                      .ivar<&Grown::v>("v")
                                      .registered();
      return kClass;
    }
    Class isa() const override { return classObject(); }
    std::string v = "variable";
  };
  const auto object = std::make_shared<Grown>();
  EXPECT_EQ(textAt(*object, "v"), "variable");
  class_addMethod(
      Grown::classObject(), SEL("_v"), +[](NSObject&, SEL) { return id(box("_v")); });
  EXPECT_EQ(textAt(*object, "v"), "_v");
  class_addMethod(
      Grown::classObject(), SEL("getV"), +[](NSObject&, SEL) { return id(box("getV")); });
  EXPECT_EQ(textAt(*object, "v"), "getV");
}

/// An object that leads to another one and answers keys that nobody knows.
class Node : public NSObject {
 public:
  static Class classObject();
  Class isa() const override { return classObject(); }

  const Ref<Node>& next() const { return next_; }
  void setNext(Ref<Node> node) { next_ = std::move(node); }
  const std::optional<std::string>& name() const { return name_; }
  void setName(std::optional<std::string> name) { name_ = std::move(name); }

 private:
  Ref<Node> next_;
  std::optional<std::string> name_;
};

Class Node::classObject() {
  static const Class kClass = ClassBuilder<Node>("CodedNode", NSObject::classObject())
                                  .method<&Node::next>("next")
                                  .method<&Node::setNext>("setNext:")
                                  .method<&Node::name>("name")
                                  .method<&Node::setName>("setName:")
                                  .registered();
  return kClass;
}

Ref<Node> chainOf(const std::vector<std::string>& names) {
  Ref<Node> first;
  for (auto name = names.rbegin(); name != names.rend(); ++name) {
    const auto node = std::make_shared<Node>();
    node->setName(*name);
    node->setNext(first);
    first = node;
  }
  return first;
}

TEST(KeyValueCoding, APathLeadsFromObjectToObject) {
  const auto node = chainOf({"a", "b", "c"});
  EXPECT_EQ(textAt(*node, "name"), "a");
  EXPECT_EQ(textAt(*node, "next.name"), "b");
  EXPECT_EQ(textAt(*node, "self.next.self.next.name"), "c");
}

TEST(KeyValueCoding, APathEndsAtTheFirstAbsentLink) {
  const auto node = chainOf({"a", "b"});
  EXPECT_EQ(valueForKeyPath(*node, "next.next"), nullptr);
  EXPECT_EQ(valueForKeyPath(*node, "next.next.next.unknown"), nullptr);
  EXPECT_EQ(valueForKeyPath(id(), "name"), nullptr);
}

TEST(KeyValueCoding, SettingAPathSetsItsLastKey) {
  const auto node = chainOf({"a", "b"});
  setValueForKeyPath(*node, box("B"), "next.name");
  EXPECT_EQ(node->next()->name(), "B");
  setValueForKeyPath(*node, box("A"), "name");
  EXPECT_EQ(node->name(), "A");
}

TEST(KeyValueCoding, SettingPastAnAbsentLinkDoesNothing) {
  const auto node = chainOf({"a"});
  setValueForKeyPath(*node, box("B"), "next.next.name");
  EXPECT_EQ(node->next(), nullptr);
  setValueForKey(id(), box("B"), "name");
}

TEST(KeyValueCoding, AnAbsentValueIsSetWhereTheKeyTakesObjects) {
  const auto node = chainOf({"a", "b"});
  setValueForKey(*node, nullptr, "next");
  setValueForKey(*node, nullptr, "name");
  EXPECT_EQ(node->next(), nullptr);
  EXPECT_EQ(node->name(), std::nullopt);
  EXPECT_EQ(valueForKey(*node, "name"), nullptr);
}

TEST(KeyValueCoding, AnObjectOfTheWrongClassIsRefused) {
  const auto node = chainOf({"a"});
  const auto [name, reason] = raisedBy([&] { setValueForKey(*node, box("text"), "next"); });
  EXPECT_EQ(name, NSInvalidArgumentException);
  EXPECT_EQ(reason,
            "-[CodedNode setNext:] got a value of class NSString where CodedNode is expected");
}

TEST(KeyValueCoding, ADictionaryAnswersItsEntries) {
  const auto entries =
      NSDictionary::dictionaryWithEntries({{"count", box("entry")}, {"node", chainOf({"a"})}});
  EXPECT_EQ(textAt(*entries, "count"), "entry");
  EXPECT_EQ(textAt(*entries, "node.name"), "a");
  EXPECT_EQ(valueForKeyPath(*entries, "missing.name"), nullptr);
}

TEST(KeyValueCoding, AMutableDictionarySetsAndRemovesEntries) {
  const auto entries = NSMutableDictionary::dictionary();
  setValueForKey(*entries, box("value"), "key");
  EXPECT_EQ(entries->textForKey("key"), "value");
  setValueForKey(*entries, nullptr, "key");
  EXPECT_EQ(entries->count(), 0U);
}

TEST(KeyValueCoding, AnImmutableDictionaryRefusesEntries) {
  const auto entries = NSDictionary::dictionaryWithEntries({{"key", box("value")}});
  EXPECT_EQ(raisedBy([&] { setValueForKey(*entries, box("new"), "key"); }).first,
            NSUndefinedKeyException);
}

TEST(KeyValueCoding, AnArrayAnswersTheValuesOfItsElements) {
  const auto list = NSArray::arrayWithObjects(
      std::vector<id>{chainOf({"a", "b"}), chainOf({"c"}), NSDictionary::dictionary()});
  EXPECT_TRUE(objectsAreEqual(
      valueForKey(*list, "name"),
      NSArray::arrayWithObjects(std::vector<id>{box("a"), box("c"), NSNull::null()})));
  EXPECT_TRUE(objectsAreEqual(
      valueForKeyPath(*list, "next.name"),
      NSArray::arrayWithObjects(std::vector<id>{box("b"), NSNull::null(), NSNull::null()})));
}

TEST(KeyValueCoding, AnArraySetsTheValueAtItsElements) {
  const auto list = NSMutableArray::array();
  list->addObject(chainOf({"a"}));
  list->addObject(chainOf({"b"}));
  setValueForKey(*list, box("x"), "name");
  EXPECT_EQ(valueForKey(*list, "name")->description(), "(x, x)");
}

TEST(KeyValueCoding, AnElementsAccessorMayChangeTheArray) {
  class Shrinking final : public NSObject {
   public:
    static Class classObject() {
      static const Class kClass = ClassBuilder<Shrinking>("CodedShrinking", NSObject::classObject())
                                      .method<&Shrinking::name>("name")
                                      .registered();
      return kClass;
    }
    Class isa() const override { return classObject(); }
    std::string name() {
      list.lock()->removeAllObjects();
      return "last";
    }
    std::weak_ptr<NSMutableArray> list;
  };
  const auto list = NSMutableArray::array();
  const auto element = std::make_shared<Shrinking>();
  element->list = list;
  list->addObject(element);
  list->addObject(chainOf({"b"}));
  EXPECT_EQ(valueForKey(*list, "name")->description(), "(last, b)");
  EXPECT_EQ(list->count(), 0U);
}

TEST(KeyValueCoding, ASetAnswersTheDistinctValuesOfItsElements) {
  const auto set = NSSet::setWithObjects({chainOf({"a"}), chainOf({"a", "b"}), chainOf({"c"})});
  EXPECT_TRUE(
      objectsAreEqual(valueForKey(*set, "name"), NSSet::setWithObjects({box("a"), box("c")})));
  const id next = valueForKey(*set, "next");
  EXPECT_EQ(std::dynamic_pointer_cast<NSSet>(next)->count(), 1U);
}

/// Answers, and keeps, what no accessor knows.
class Open final : public Node {
 public:
  static Class classObject();
  Class isa() const override { return classObject(); }

  id valueForUndefinedKey(std::string_view key) const { return box("no " + std::string(key)); }
  void setValueForUndefinedKey(const id& value, std::string_view key) {
    seen = std::string(key) + "=" + value->description();
  }
  void setNilValueForKey(std::string_view key) { seen = "nil " + std::string(key); }
  void setCount(int) {}

  std::string seen;
};

Class Open::classObject() {
  static const Class kClass =
      ClassBuilder<Open>("CodedOpen", Node::classObject())
          .method<&Open::valueForUndefinedKey>("valueForUndefinedKey:")
          .method<&Open::setValueForUndefinedKey>("setValue:forUndefinedKey:")
          .method<&Open::setNilValueForKey>("setNilValueForKey:")
          .method<&Open::setCount>("setCount:")
          .registered();
  return kClass;
}

TEST(KeyValueCoding, AClassMayAnswerUnknownKeys) {
  const auto object = std::make_shared<Open>();
  EXPECT_EQ(textAt(*object, "colour"), "no colour");
  setValueForKey(*object, box(5), "colour");
  EXPECT_EQ(object->seen, "colour=5");
  setValueForKey(*object, nullptr, "count");
  EXPECT_EQ(object->seen, "nil count");
}

TEST(KeyValueCoding, AProxyPassesItsMessagesOn) {
  const auto node = chainOf({"a", "b"});
  ForwardingObject proxy(node);
  EXPECT_EQ(textAt(proxy, "name"), "a");
  EXPECT_EQ(unboxText(valueForKey(proxy, "name")), "a");
  setValueForKey(proxy, box("A"), "name");
  setValueForKeyPath(proxy, box("B"), "next.name");
  EXPECT_EQ(node->name(), "A");
  EXPECT_EQ(node->next()->name(), "B");
}

TEST(KeyValueCoding, ObjectsAnswerItsMessages) {
  const auto node = chainOf({"a"});
  EXPECT_EQ(unboxText(send<id>(*node, SEL("valueForKey:"), std::string("name"))), "a");
  send(*node, SEL("setValue:forKey:"), std::string("A"), std::string("name"));
  EXPECT_EQ(node->name(), "A");
}

TEST(KeyValueCoding, WhatIsSetIsRead) {
  EXPECT_TRUE(rc::check([](long big, unsigned small, double fraction, const std::string& text) {
    const auto object = std::make_shared<Scalars>();
    setValueForKey(*object, box(big), "big");
    setValueForKey(*object, box(small), "unsignedNumber");
    setValueForKey(*object, box(fraction), "fraction");
    RC_ASSERT(objectsAreEqual(valueForKey(*object, "big"), box(big)));
    RC_ASSERT(objectsAreEqual(valueForKey(*object, "unsignedNumber"), box(small)));
    RC_ASSERT(objectsAreEqual(valueForKey(*object, "fraction"), box(fraction)));
    const auto node = std::make_shared<Node>();
    setValueForKey(*node, box(text), "name");
    RC_ASSERT(unboxText(valueForKey(*node, "name")) == text);
  }));
}

TEST(KeyValueCoding, AnyTextIsAKey) {
  EXPECT_TRUE(rc::check([](const std::string& key) {
    const auto entries = NSMutableDictionary::dictionary();
    setValueForKey(*entries, box("value"), key);
    RC_ASSERT(unboxText(valueForKey(*entries, key)) == "value");
    const auto node = std::make_shared<Open>();
    RC_ASSERT(valueForKeyPath(*node, "unknown") != nullptr);
  }));
}

}  // namespace
}  // namespace rvf
