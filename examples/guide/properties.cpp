// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include "Platform/Observation/KeyValueBinding.h"
#include "Platform/Observation/KeyValueCoding.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Storage/NSKeyedArchiver.h"
#include "Platform/Storage/NSKeyedUnarchiver.h"
#include "Platform/Values/NSArray.h"
#include "Platform/Values/NSMutableDictionary.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/RuntimeServices/NSObject-RVFProperties.h"
#include "RVFoundation/RuntimeServices/RVFBindingHelper.h"
#include "RVFoundation/RuntimeServices/RVFClassPropertyDescriptor.h"
#include "RVFoundation/RuntimeServices/RVFDynamicPropertySynthesizer.h"
#include "RVFoundation/RuntimeServices/RVFKeyedArchiverFilter.h"
#include "RVFoundation/RuntimeServices/RVFSupersequentImplementation.h"

using namespace rvf;

namespace {

using Descriptor = RVFClassPropertyDescriptor;

class Product final : public NSObject, public RVFDynamicPropertyProvider {
 public:
  static Class classObject() {
    static const Class kClass = RVFDynamicPropertySynthesizer::registered(
        ClassBuilder<Product>("Product", NSObject::classObject())
            .property("name", "T@\"NSString\",C,D,N")
            .property("stock", "Tq,D,N")
            .method<&Product::encodeWithCoder>("encodeWithCoder:")
            .method<&Product::initWithCoder>("initWithCoder:")
            .method("alloc", allocImplementation<Product>()));
    return kClass;
  }
  Class isa() const override { return classObject(); }

  id objectForDynamicProperty(std::string_view name, bool) override {
    return values_->objectForKey(name);
  }
  void setObject(const id& object, std::string_view name, bool) override {
    object ? values_->setObject(object, name) : values_->removeObjectForKey(name);
  }

  void encodeWithCoder(const Ref<NSCoder>& coder) {
    for (const auto& name : propertyNames())
      coder->encodeObject(valueForKey(*this, name), name);
  }
  void initWithCoder(const Ref<NSCoder>& coder) {
    for (const auto& name : propertyNames())
      if (const id value = coder->decodeObjectForKey(name)) setValueForKey(*this, value, name);
  }

 private:
  static std::vector<std::string> propertyNames() {
    std::vector<std::string> names;
    const auto properties = RVF_allProperties(classObject());
    for (const id& property : *properties)
      names.push_back(std::static_pointer_cast<Descriptor>(property)->name());
    return names;
  }

  Ref<NSMutableDictionary> values_ = NSMutableDictionary::dictionary();
};

/// Belongs to the machine, so there is no sense in archiving it.
class Drawer final : public NSObject {
 public:
  static Class classObject() {
    static const Class kClass = ClassBuilder<Drawer>("Drawer", NSObject::classObject())
                                    .method<&Drawer::open>("open")
                                    .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }
  std::string description() const override { return "<drawer 1>"; }
  std::string open() { return "drawer 1 is open"; }
};

std::string openWithBell(NSObject& self, SEL selector) {
  const IMP own = RVF_ImpOfCallingMethod(&self, selector);
  const IMP next = RVF_getImplementationOf(&self, selector, own);
  return "ding, " + (next ? next.call<std::string>(self, selector) : "nothing opens");
}

}  // namespace

int main() {
  const auto product = std::make_shared<Product>();
  send(product, SEL("setName:"), box("Tea"));
  setValueForKey(*product, box(3), "stock");
  std::cout << send<std::string>(product, SEL("name")) << ", " << send<long>(product, SEL("stock"))
            << " left\n";

  const auto properties = RVF_allProperties(Product::classObject());
  for (const id& each : *properties) {
    const auto property = std::static_pointer_cast<Descriptor>(each);
    std::cout << property->name() << ' ' << property->encodedType().value_or("") << '\n';
  }

  const auto data = NSKeyedArchiver::archivedDataWithRootObject(product);
  Ref<NSError> error;
  const id again = NSKeyedUnarchiver::unarchiveTopLevelObjectWithData(data, &error);
  if (error) return 1;  // damaged, or no archive at all
  std::cout << valueForKey(*again, "name")->description() << " again\n";

  const auto filter = RVFKeyedArchiverFilter::initWithClassesToFilter(
      RVFKeyedArchiverFilter::setOfClasses({Drawer::classObject()}));
  const auto archiver = std::make_shared<NSKeyedArchiver>();
  archiver->setDelegate(filter);
  archiver->encodeObject(NSArray::arrayWithObjects({box("Till"), std::make_shared<Drawer>()}),
                         "root");
  const id read = NSKeyedUnarchiver::unarchiveTopLevelObjectWithData(archiver->encodedData());
  std::cout << read->description() << '\n';

  const auto label = std::make_shared<Product>();
  const auto helper = RVFBindingHelper::init();
  bindToObject(*helper->proxyForObject(label), "name", product, "name");
  setValueForKey(*product, box("Green tea"), "name");
  helper->reset();  // everything that was made through the helper is undone
  setValueForKey(*product, box("Coffee"), "name");
  std::cout << valueForKey(*label, "name")->description() << '\n';

  class_addExtension(Drawer::classObject(), {{SEL("open"), &openWithBell}});
  std::cout << send<std::string>(std::make_shared<Drawer>(), SEL("open")) << '\n';
}
