// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Runtime/Runtime.h"
#include "Platform/Values/NSMutableDictionary.h"

namespace rvf {

/// What the runtime knows of a declared property, as an object: its name, and its attributes as a
/// dictionary of texts. For code that copies, shows or stores objects property by property.
///
/// Keeps texts of its own, so it does not change when the class does.
///
/// Thread: one at a time. Lifetime: owns its texts, so it may outlive what it describes.
class RVF_EXPORT RVFClassPropertyDescriptor final : public NSObject {
 public:
  /// A new descriptor, kept alive at least until the current release scope ends.
  static Ref<RVFClassPropertyDescriptor> classPropertyDescriptorForProperty(
      const Property& property);
  static Ref<RVFClassPropertyDescriptor> initWithProperty(const Property& property);

  explicit RVFClassPropertyDescriptor(const Property& property);

  static Class classObject();
  Class isa() const override;

  /// The name in the runtime, by which key-value coding finds the property.
  const std::string& name() const noexcept { return name_; }
  /// By letter, the rest of the attribute: `T` gives the type encoding, flags give the empty text.
  const Ref<NSMutableDictionary>& attributes() const noexcept { return attributes_; }

  /// Replaces `attributes` by those of an attribute string: one between any two commas, the later
  /// of two with one letter. Any letter is accepted. An empty attribute, so an empty string too,
  /// raises `NSRangeException`; `attributes` then holds those before it.
  void readPropertyAttributesFromString(std::string_view attributes);

  /// Read from `attributes` at every call, like all that follow.
  bool isCopy() const { return has("C"); }
  bool isNonAtomic() const { return has("N"); }
  bool isRetained() const { return has("&"); }
  /// Neither copied nor retained; a weak property counts as assigned.
  bool isAssigned() const { return !isCopy() && !isRetained(); }
  bool isDynamic() const { return has("D"); }
  bool isReadonly() const { return has("R"); }
  std::optional<std::string> encodedType() const { return value("T"); }
  /// Whether the type is that of an object, of any class.
  bool isObjCType() const;
  /// The null selector if the accessor has its usual name.
  SEL customGetter() const;
  SEL customSetter() const;
  std::optional<std::string> ivarName() const { return value("V"); }

  /// "<RVFClassPropertyDescriptor 0x…: title>"
  std::string description() const override;

 private:
  void replaceAttributes(Ref<NSMutableDictionary> attributes);
  bool has(std::string_view letter) const { return attributes_->objectForKey(letter) != nullptr; }
  std::optional<std::string> value(std::string_view letter) const;

  Ref<NSMutableDictionary> attributes_;
  std::string name_;
};

}  // namespace rvf
