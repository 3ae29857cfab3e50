// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSMutableDictionary.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/RuntimeServices/RVFDynamicPropertySynthesizer.h"

using namespace rvf;

namespace {

// docs/object-model.md shows this class and the body of main; a test sees to it that both are the
// same.
class Note final : public NSObject, public RVFDynamicPropertyProvider {
 public:
  Class isa() const override {
    static const Class kClass = RVFDynamicPropertySynthesizer::registered(
        ClassBuilder<Note>("Note", NSObject::classObject())
            .property("title", "T@\"NSString\",C,D,N")
            .property("count", "Tq,D,N"));
    return kClass;
  }

  id objectForDynamicProperty(std::string_view name, bool) override {
    return values_->objectForKey(name);
  }
  void setObject(const id& object, std::string_view name, bool) override {
    object ? values_->setObject(object, name) : values_->removeObjectForKey(name);
  }

 private:
  Ref<NSMutableDictionary> values_ = NSMutableDictionary::dictionary();
};

}  // namespace

int main() {
  const auto note = std::make_shared<Note>();
  send(note, SEL("setTitle:"), box("Milk"));
  send(note, SEL("setCount:"), 5L);
  std::cout << send<std::string>(note, SEL("title")) << ' ';  // Milk
  std::cout << send<long>(note, SEL("count")) << '\n';        // 5
  try {
    send(note, SEL("setCount:"), 2.5);
  } catch (const NSException& exception) {
    std::cout << exception.reason() << '\n';
    // -[Note setCount:] got a value of type double where q is expected
  }
}
