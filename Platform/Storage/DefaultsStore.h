// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "Platform/Runtime/NSObject.h"
#include "Platform/Storage/DefaultsFile.h"
#include "Platform/Values/NSDictionary.h"
#include "Platform/Values/NSError.h"

namespace rvf {

/// The values behind a user defaults object: those of its file as of the last reading, those set
/// since, and the registered ones. Without a file it lives in memory only. Thread-safe.
///
/// The file is read at first use and by `synchronize`, and written by `synchronize` alone: the keys
/// that were set or removed here since then replace those in the file, all others are taken from
/// it. If the file is gone, everything that is known goes into the new one. A damaged file is set
/// aside; one that cannot be read is never replaced.
class DefaultsStore final {
 public:
  explicit DefaultsStore(std::optional<std::string> path);

  id objectForKey(std::string_view key);
  /// The value must be immutable; absent removes.
  void setObject(id value, std::string_view key);
  void registerDefaults(const NSDictionary& values);

  bool synchronize();
  bool performExclusively(const std::function<void()>& work);
  /// Why the last synchronization failed; absent if it did not.
  Ref<NSError> error() const;

 private:
  using Values = std::map<std::string, id, std::less<>>;
  class LockHold;

  void load();
  bool refresh();
  bool setDamagedAside();
  void tellOfDamage(const std::optional<std::string>& newPath);
  bool write();
  void takeOver(const NSDictionary& contents);
  void keepAllThatIsKnown();
  bool isChanged() const;
  bool fail();

  // Taken in this order. The first one may be held for as long as the disk takes, or another
  // process; the second one never.
  std::recursive_mutex fileMutex_;
  mutable std::mutex valuesMutex_;

  // Guarded by fileMutex_.
  std::optional<DefaultsFile> file_;
  OwnedDescriptor lock_;
  bool isDamageTold_ = false;  // while it cannot be set aside

  std::atomic<bool> isLoaded_{false};

  // Guarded by valuesMutex_.
  Values values_;
  Values registered_;
  std::set<std::string, std::less<>> changed_;
  Ref<NSError> error_;
};

}  // namespace rvf
