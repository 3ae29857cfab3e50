// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// Makes a class findable by name before its first use. One static object beside the class's
/// code does it:
///
///     const ClassRegistration kRegistration(&Person::classObject);
///
/// At load it only links itself into a list; the class is described when it is first used or
/// when a class is looked up by name. So `classObject()` must look no class up by name itself, and
/// a library that has classes is never unloaded.
///
/// Thread: made at load; read by any. Lifetime: a static object of a library that is never
/// unloaded.
class RVF_EXPORT ClassRegistration final {
 public:
  explicit ClassRegistration(Class (*classObject)()) noexcept;
  ClassRegistration(const ClassRegistration&) = delete;
  ClassRegistration& operator=(const ClassRegistration&) = delete;

  /// Describes every class that has been linked in by now. Thread-safe.
  static void describeAll();

 private:
  Class (*classObject_)();
  const ClassRegistration* next_;
};

}  // namespace rvf
