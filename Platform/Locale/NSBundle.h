// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Values/NSDictionary.h"

namespace rvf {

/// Keys of the information dictionary.
inline constexpr std::string_view kCFBundleIdentifierKey = "CFBundleIdentifier";
inline constexpr std::string_view kCFBundleNameKey = "CFBundleName";
inline constexpr std::string_view kCFBundleVersionKey = "CFBundleVersion";

/// What a program or a library brings along beside its code: facts about itself and the
/// translations of its texts, in string tables.
///
/// A table is a gettext text domain of the same name. Its catalogues are looked for, for the
/// current `NSLocale`, as LOCALE/LC_MESSAGES/TABLE.mo in the bundle's catalogue folder, if it has
/// one, then in the one that was installed with this library.
///
/// Thread: any. Lifetime: catalogues that were read are kept for one locale at a time.
class RVF_EXPORT NSBundle final : public NSObject {
 public:
  /// `defaultTable` is the table that is meant where none is named.
  NSBundle(std::string_view defaultTable, Ref<NSDictionary> infoDictionary);
  ~NSBundle() override;

  /// The running program's. Its default table is named after the program's file, and it knows no
  /// facts until the program states them.
  static Ref<NSBundle> mainBundle();
  /// The bundle of the library that the class belongs to (see `NSBundleRegistration`), else the
  /// main bundle.
  static Ref<NSBundle> bundleForClass(Class aClass);

  static Class classObject();
  Class isa() const override;

  /// Never absent.
  Ref<NSDictionary> infoDictionary() const;
  /// Absent is taken as empty.
  void setInfoDictionary(Ref<NSDictionary> infoDictionary);

  /// Where to look first, for example the build tree's folder; absent for the installed one only.
  void setCatalogueFolder(std::optional<std::string> folder);

  /// The text for users that a key, the English text, stands for in the named table or the
  /// default one. The key itself if there is no catalogue, no entry or an empty one.
  std::string localizedStringForKey(std::string_view key, std::string_view table = {}) const;

 private:
  class State;
  std::unique_ptr<State> state_;
};

/// Says that the classes whose names begin with a prefix belong to a library's bundle. One static
/// object in the library does it; at load it only links itself into a list.
///
/// Thread: made at load; read by any. Lifetime: a static object of a library that is never
/// unloaded.
class RVF_EXPORT NSBundleRegistration final {
 public:
  NSBundleRegistration(const char* classNamePrefix, Ref<NSBundle> (*bundle)()) noexcept;
  NSBundleRegistration(const NSBundleRegistration&) = delete;
  NSBundleRegistration& operator=(const NSBundleRegistration&) = delete;

 private:
  friend class NSBundle;
  const char* classNamePrefix_;
  Ref<NSBundle> (*bundle_)();
  const NSBundleRegistration* next_;
};

}  // namespace rvf
