// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Platform/Export.h"
#include "Platform/Storage/NSUserDefaults.h"
#include "Platform/Values/NSMutableDictionary.h"

namespace rvf {

/// User defaults in memory, for tests of whatever is handed its user defaults. Nothing reaches the
/// disk or another process.
///
/// It keeps the very objects that it is given, of any class, and answers them unchecked: the text,
/// array, … for a key is whatever stands there. There is no registration domain: registered values
/// become ordinary ones, so that removing such a key removes it for good.
///
/// Thread: one at a time, unlike other user defaults. Lifetime: keeps the objects themselves; all
/// goes with it.
class RVF_EXPORT RVFTestingUserDefaults final : public NSUserDefaults {
 public:
  /// A new, empty store each time, kept alive at least until the current release scope ends.
  static Ref<RVFTestingUserDefaults> testingDefaults();

  RVFTestingUserDefaults();

  static Class classObject();
  Class isa() const override;

  /// All values by key: the store itself. Absent only if that was set; then everything reads as
  /// absent, and nothing is stored but by `registerDefaults`.
  const Ref<NSMutableDictionary>& data() const noexcept { return data_; }
  void setData(Ref<NSMutableDictionary> data);

  id objectForKey(std::string_view key) override;
  void setObject(const id& object, std::string_view key) override;
  void removeObjectForKey(std::string_view key) override;

  id stringForKey(std::string_view key) override;
  id arrayForKey(std::string_view key) override;
  id dictionaryForKey(std::string_view key) override;
  id dataForKey(std::string_view key) override;
  id stringArrayForKey(std::string_view key) override;
  id URLForKey(std::string_view key) override;

  /// What the value answers to `integerValue`, `floatValue`, `doubleValue`, `boolValue`; 0 or false
  /// if there is none. Raises the unrecognized-selector exception for a value without answer.
  long integerForKey(std::string_view key) override;
  float floatForKey(std::string_view key) override;
  double doubleForKey(std::string_view key) override;
  bool boolForKey(std::string_view key) override;

  /// Stores the very object.
  void setURL(const id& url, std::string_view key) override;

  /// Existing values win. A new dictionary takes the place of `data`.
  void registerDefaults(const Ref<NSDictionary>& values) override;

  /// Does nothing; true.
  bool synchronize() override;
  /// Runs `work`; true.
  bool performExclusively(const std::function<void()>& work) override;
  Ref<NSError> synchronizationError() const override;

 private:
  Ref<NSMutableDictionary> data_;
};

}  // namespace rvf
