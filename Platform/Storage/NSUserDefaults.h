// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Values/NSDictionary.h"
#include "Platform/Values/NSError.h"

namespace rvf {

class DefaultsStore;

/// Settings by key that outlive the process.
///
///     NSUserDefaults::setStandardFolderName("till");   // once, before the first use
///     const auto defaults = NSUserDefaults::standardUserDefaults();
///     defaults->setInteger(3, "drawer");
///     if (!defaults->synchronize()) { … }
///
/// Values are property lists, see `NSPropertyListSerialization`; anything else, texts that are not
/// UTF-8 included, raises `NSInvalidArgumentException`. Setting takes a deep immutable copy, which
/// shares what is immutable already; what is read is immutable. A key that has no value has its
/// registered one.
///
/// The standard defaults are kept in "defaults.plist", in a folder that the application names under
/// $XDG_CONFIG_HOME or ~/.config (XDG Base Directory Specification). The file is a binary property
/// list for its owner only. It is read at first use, and written by `synchronize` and by nothing
/// else: what is not synchronized is lost with the process. It is replaced as a whole, durably, so
/// that after a crash it is the old or the new one. Processes that share it do not lose one
/// another's keys: only keys that were set or removed here since the last synchronization replace
/// the file's, of which the later writer's counts. A file that is no property list is renamed to
/// "defaults.plist.damaged-1" (2, 3, …) with one line in the log, and the defaults start empty.
/// One that cannot be read is left alone, and `synchronize` fails. So it does, with
/// `NSPropertyListWriteInvalidError`, while the values of many keys, each of which may be set,
/// share so much that together they unfold too far for a property list: values that go make room.
///
/// Thread-safe: any thread may call anything at any time. A reading sees all of a value, the one
/// from before or after a change that another thread is making; `synchronize` and
/// `performExclusively` run one after the other, and readings and settings do not wait for them,
/// except the first use, which reads the file. A change that depends on the value before it needs
/// `performExclusively`.
///
/// A subclass may keep its values elsewhere: every operation is virtual.
///
/// Thread: any. Lifetime: the standard ones live as long as the process; values that were read stay
/// as they are.
class RVF_EXPORT NSUserDefaults : public NSObject {
 public:
  /// Those of the running application, shared. Named after the program's file unless
  /// `setStandardFolderName` was called.
  static Ref<NSUserDefaults> standardUserDefaults();
  /// Names the folder of the standard defaults. Raises `NSInvalidArgumentException` unless it is
  /// one path component, and `NSInternalInconsistencyException` once they are in use,
  /// which asking for the current locale begins as well.
  static void setStandardFolderName(std::string_view name);
  /// Defaults kept in this file. Two objects on one file are like two processes.
  static Ref<NSUserDefaults> userDefaultsWithFile(std::string_view path);
  /// "defaults.plist" in the named folder, for these values of $XDG_CONFIG_HOME and $HOME. An
  /// empty or relative configuration folder does not count; without a home it is the one that the
  /// system's user database names.
  static std::string filePath(std::string_view configurationHome, std::string_view home,
                              std::string_view folderName);

  ~NSUserDefaults() override;

  static Class classObject();
  Class isa() const override;

  /// The stored value, else the registered one, else absent.
  virtual id objectForKey(std::string_view key);
  /// Absent removes.
  virtual void setObject(const id& object, std::string_view key);
  /// Removing nothing is fine. A registered value shows again.
  virtual void removeObjectForKey(std::string_view key);

  /// The value if it is of this kind, else absent. A number is answered as its text.
  virtual id stringForKey(std::string_view key);
  virtual id arrayForKey(std::string_view key);
  virtual id dictionaryForKey(std::string_view key);
  virtual id dataForKey(std::string_view key);
  /// An array of nothing but texts.
  virtual id stringArrayForKey(std::string_view key);
  /// A text as an `NSURL`, absent if it cannot be one.
  virtual id URLForKey(std::string_view key);

  /// The number, or a text by its numeric or boolean reading; 0 or false for anything else.
  virtual long integerForKey(std::string_view key);
  virtual float floatForKey(std::string_view key);
  virtual double doubleForKey(std::string_view key);
  virtual bool boolForKey(std::string_view key);

  /// These four box the value and call `setObject`.
  virtual void setInteger(long value, std::string_view key);
  virtual void setFloat(float value, std::string_view key);
  virtual void setDouble(double value, std::string_view key);
  virtual void setBool(bool value, std::string_view key);
  /// Stores the absolute form of an `NSURL` as text; absent removes.
  virtual void setURL(const id& url, std::string_view key);

  /// Adds values that keys have until they are set. They are not stored. Of two registered values
  /// of one key the later counts.
  virtual void registerDefaults(const Ref<NSDictionary>& values);

  /// Writes what was changed and takes over what other processes changed, before it returns. Waits
  /// for another process that is writing. False if that failed: the values stay as they are here,
  /// and the next call tries again.
  virtual bool synchronize();

  /// Brings the values up to date, runs `work`, and synchronizes, with other processes locked out
  /// from beginning to end: for a change that depends on the value before it. Answers as
  /// `synchronize`; if the file cannot be locked or read, `work` does not run. An exception of
  /// `work` passes through; what it had changed then waits for the next synchronization.
  virtual bool performExclusively(const std::function<void()>& work);

  /// Why the last synchronization, or reading the file, failed; absent if it did not.
  virtual Ref<NSError> synchronizationError() const;

 protected:
  /// Kept in the file, or in memory only.
  explicit NSUserDefaults(std::optional<std::string> path);

 private:
  std::unique_ptr<DefaultsStore> store_;
};

/// Says how a stored text becomes a URL. One static object beside the class of URLs does it,
/// because that stands on a higher floor.
///
/// Thread: made at load; read by any. Lifetime: a static object of a library that is never
/// unloaded.
class RVF_EXPORT StoredURLRegistration final {
 public:
  explicit StoredURLRegistration(id (*urlOfText)(std::string_view text)) noexcept;
};

}  // namespace rvf
