// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/NSProxy.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/NSInvocation.h"
#include "Platform/Runtime/NSMethodSignature.h"
#include "Platform/Runtime/Pointers.h"
#include "Platform/Values/NSError.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

struct Point {
  double x = 0;
  long y = 0;
};
enum class Colour : std::uint16_t { none, red = 7 };

template <class T>
T echo(NSObject&, SEL, T value) {
  return value;
}

class Target final : public NSObject {
 public:
  static Class classObject() {
    static const Class kClass = ClassBuilder<Target>("ProxyTestTarget", NSObject::classObject())
                                    .conformsTo("ProxyTestGreeting")
                                    .method<&Target::greet>("greet:")
                                    .method<&Target::failWithError>("failWithError:")
                                    .method<&Target::raise>("raise")
                                    .method<&Target::join>("join:with:and:")
                                    .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }
  std::string description() const override { return "the target"; }

  std::string greet(std::string_view name) { return "Hello, " + std::string(name); }
  bool failWithError(Ref<NSError>* error) {
    reportError(error, [] { return NSError::errorWithDomain("Test", 5); });
    return false;
  }
  void raise() { throw std::runtime_error("stop"); }
  std::string join(long number, const id& object, const std::string& text) {
    return std::to_string(number) + (object ? object->description() : "absent") + text;
  }
};

class Proxy final : public NSProxy {
 public:
  static Class classObject() {
    static const Class kClass =
        ClassBuilder<Proxy>("ProxyTestProxy", NSProxy::classObject()).registered();
    return kClass;
  }
  explicit Proxy(id target) : target_(std::move(target)) {}
  Class isa() const override { return classObject(); }
  Ref<NSMethodSignature> methodSignatureForSelector(SEL selector) const override {
    return target_->methodSignatureForSelector(selector);
  }
  void forwardInvocation(NSInvocation& invocation) override {
    invocation.invokeWithTarget(target_);
  }

 private:
  const id target_;
};

class ProxyTest : public ::testing::Test {
 protected:
  const Ref<Target> target_ = std::make_shared<Target>();
  const Ref<Proxy> proxy_ = std::make_shared<Proxy>(target_);
  const Ref<Proxy> outer_ = std::make_shared<Proxy>(proxy_);
};

TEST_F(ProxyTest, PassesMessagesAndResultsThrough) {
  EXPECT_EQ(send<std::string>(proxy_, SEL("greet:"), box("Ada")), "Hello, Ada");
}

TEST_F(ProxyTest, PassesSeveralArgumentsInOrder) {
  EXPECT_EQ(send<std::string>(proxy_, SEL("join:with:and:"), 1L, box("b"), std::string("c")),
            "1bc");
  EXPECT_EQ(send<std::string>(proxy_, SEL("join:with:and:"), 1L, nullptr, std::string("c")),
            "1absentc");
}

TEST_F(ProxyTest, OfAProxyReachesTheInnermostTarget) {
  EXPECT_EQ(send<std::string>(outer_, SEL("greet:"), box("Ada")), "Hello, Ada");
  EXPECT_TRUE(outer_->isKindOfClass(Target::classObject()));
  EXPECT_EQ(outer_->description(), "the target");
}

TEST_F(ProxyTest, AnswersItsOwnIdentityHashAndClass) {
  EXPECT_EQ(send<Class>(proxy_, SEL("class")), Proxy::classObject());
  EXPECT_EQ(send<std::size_t>(proxy_, SEL("hash")), proxy_->hash());
  EXPECT_NE(proxy_->hash(), target_->hash());
  EXPECT_EQ(send<id>(proxy_, SEL("self")), proxy_);
  EXPECT_EQ(send<id>(outer_, SEL("self")), outer_);
  EXPECT_TRUE(send<bool>(proxy_, SEL("isEqual:"), id(proxy_)));
  EXPECT_FALSE(send<bool>(proxy_, SEL("isEqual:"), id(target_)));
  EXPECT_FALSE(proxy_->isEqual(target_.get()));
}

TEST_F(ProxyTest, AnswersForItsTargetWhatKindOfObjectItIs) {
  EXPECT_TRUE(proxy_->isKindOfClass(Target::classObject()));
  EXPECT_TRUE(proxy_->isKindOfClass(NSObject::classObject()));
  EXPECT_FALSE(proxy_->isKindOfClass(Proxy::classObject()));
  EXPECT_TRUE(proxy_->isMemberOfClass(Target::classObject()));
  EXPECT_TRUE(send<bool>(proxy_, SEL("isKindOfClass:"), Target::classObject()));
}

TEST_F(ProxyTest, AnswersForItsTargetWhatItCanDo) {
  EXPECT_TRUE(proxy_->respondsToSelector(SEL("greet:")));
  EXPECT_FALSE(proxy_->respondsToSelector(SEL("fly")));
  EXPECT_TRUE(proxy_->conformsToProtocol("ProxyTestGreeting"));
  EXPECT_FALSE(proxy_->conformsToProtocol("ProxyTestFlying"));
  EXPECT_TRUE(send<bool>(proxy_, SEL("respondsToSelector:"), SEL("greet:")));
}

TEST_F(ProxyTest, DescribesItsTarget) {
  EXPECT_EQ(proxy_->description(), "the target");
  EXPECT_EQ(send<std::string>(proxy_, SEL("description")), "the target");
}

TEST_F(ProxyTest, WritesThroughOutPointers) {
  Ref<NSError> error;
  EXPECT_FALSE(send<bool>(outer_, SEL("failWithError:"), &error));
  ASSERT_NE(error, nullptr);
  EXPECT_EQ(error->code(), 5);
}

TEST_F(ProxyTest, PassesExceptionsThrough) {
  EXPECT_THROW(send(outer_, SEL("raise")), std::runtime_error);
}

TEST_F(ProxyTest, RaisesForAMessageThatItsTargetDoesNotAnswer) {
  try {
    send(proxy_, SEL("fly"));
    FAIL() << "nothing was raised";
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), NSInvalidArgumentException);
    EXPECT_EQ(exception.reason(), "-[ProxyTestProxy fly]: unrecognized selector sent to instance " +
                                      pointerText(proxy_.get()));
  }
}

TEST_F(ProxyTest, RaisesForValuesOfOtherTypesAsTheTargetWould) {
  EXPECT_THROW(send(proxy_, SEL("greet:"), 2.5), NSException);
  EXPECT_THROW(send(proxy_, SEL("greet:")), NSException);
  EXPECT_THROW(send<double>(proxy_, SEL("greet:"), box("Ada")), NSException);
}

TEST_F(ProxyTest, MayBeDroppedByTheMessageThatItPasses) {
  Ref<Proxy> dropped = std::make_shared<Proxy>(target_);
  const IMP drop = +[](NSObject&, SEL, Ref<Proxy>* proxy) { proxy->reset(); };
  class_addMethod(Target::classObject(), SEL("drop:"), drop);
  send(dropped, SEL("drop:"), &dropped);
  EXPECT_EQ(dropped, nullptr);
}

TEST(NSProxy, IsTheRootOfItsClasses) {
  EXPECT_EQ(class_getSuperclass(NSProxy::classObject()), nullptr);
  EXPECT_EQ(class_getSuperclass(Proxy::classObject()), NSProxy::classObject());
}

TEST(NSProxy, WithoutATargetAnswersNothing) {
  class Bare : public NSProxy {};
  const auto bare = std::make_shared<Bare>();
  EXPECT_THROW(send(bare, SEL("greet:"), box("Ada")), NSException);
  EXPECT_THROW(bare->respondsToSelector(SEL("greet:")), NSException);
}

/// One type of argument and result, through two proxies.
template <class T>
class ForwardedType : public ::testing::Test {
 protected:
  static T passed(const T& value) {
    const std::string selector = "echo" + typeEncoding<T>() + std::string(typeid(T).name()) + ":";
    class_addMethod(Target::classObject(), SEL(selector), &echo<T>);
    const auto outer = std::make_shared<Proxy>(std::make_shared<Proxy>(std::make_shared<Target>()));
    return send<T>(outer, SEL(selector), value);
  }
};

using Arithmetic =
    ::testing::Types<bool, char, signed char, unsigned char, short, unsigned short, int, unsigned,
                     long, unsigned long, long long, unsigned long long, float, double>;
TYPED_TEST_SUITE(ForwardedType, Arithmetic);

TYPED_TEST(ForwardedType, PassesItsLimits) {
  using Limits = std::numeric_limits<TypeParam>;
  for (const TypeParam value : {TypeParam{}, TypeParam{1}, Limits::max(), Limits::lowest()})
    EXPECT_EQ(this->passed(value), value);
}

template <class T>
T forwarded(const T& value) {
  const std::string selector = "echo" + std::string(typeid(T).name()) + ":";
  class_addMethod(Target::classObject(), SEL(selector), &echo<T>);
  return send<T>(std::make_shared<Proxy>(std::make_shared<Target>()), SEL(selector), value);
}

TEST(ForwardedValue, MayBeAnObjectOrText) {
  const auto text = box("a text that is too long to be kept in place");
  EXPECT_EQ(forwarded<id>(text), text);
  EXPECT_EQ(forwarded<Ref<NSString>>(text), text);
  EXPECT_EQ(forwarded<std::weak_ptr<NSString>>(text).lock(), text);
  EXPECT_EQ(forwarded(text->string()), text->string());
  EXPECT_EQ(forwarded(std::optional<std::string>("x")), "x");
  EXPECT_EQ(forwarded(std::optional<std::string>()), std::nullopt);
  EXPECT_EQ(forwarded(id()), nullptr);
}

TEST(ForwardedValue, MayBeASelectorClassOrPointer) {
  int number = 1;
  EXPECT_EQ(forwarded(SEL("x:")), SEL("x:"));
  EXPECT_EQ(forwarded(Target::classObject()), Target::classObject());
  EXPECT_EQ(forwarded(&number), &number);
  EXPECT_EQ(forwarded<const void*>(&number), &number);
  EXPECT_STREQ(forwarded<const char*>("text"), "text");
}

TEST(ForwardedValue, MayBeARecordEnumerationOrBlock) {
  const Point point = forwarded(Point{1.5, -2});
  EXPECT_EQ(point.x, 1.5);
  EXPECT_EQ(point.y, -2);
  EXPECT_EQ(forwarded(Colour::red), Colour::red);
  EXPECT_EQ(forwarded(std::function<int(int)>([](int n) { return n + 1; }))(4), 5);
}

}  // namespace
}  // namespace rvf
