// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Values/NSAttributedString.h"
#include "Platform/Values/NSDictionary.h"

namespace rvf {

/// Turns values into text for users, and maybe text back into values. Abstract: a formatter defines
/// what it can do, everything else raises `NSInvalidArgumentException`.
///
/// Thread: one at a time, unless the formatter says otherwise. Lifetime: keeps neither values nor
/// texts.
class RVF_EXPORT NSFormatter : public NSObject {
 public:
  static Class classObject();
  Class isa() const override;

  /// The text of a value; absent for a value that this formatter is not for. What an absent value
  /// gives is each formatter's own choice.
  virtual std::optional<std::string> stringForObjectValue(const id& value);
  /// The text to begin editing with; the text of the value unless a formatter says otherwise.
  virtual std::optional<std::string> editingStringForObjectValue(const id& value);
  /// The text with attributes; absent unless a formatter says otherwise.
  virtual Ref<NSAttributedString> attributedStringForObjectValue(
      const id& value, const Ref<NSDictionary>& withDefaultAttributes);
  /// Reads a text as a value and stores it in `object`. False if it cannot be read; then `object`
  /// is untouched and `errorDescription`, if given, is what to tell the user.
  virtual bool getObjectValue(id* object, std::string_view forString,
                              std::string* errorDescription = nullptr);
};

}  // namespace rvf
