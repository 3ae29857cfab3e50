// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/stat.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "Platform/Values/NSDictionary.h"
#include "Platform/Values/NSError.h"

namespace rvf {

/// A file descriptor, closed with its owner.
class OwnedDescriptor final {
 public:
  explicit OwnedDescriptor(int descriptor = -1) noexcept : descriptor_(descriptor) {}
  ~OwnedDescriptor();
  OwnedDescriptor(OwnedDescriptor&& other) noexcept;
  OwnedDescriptor& operator=(OwnedDescriptor&& other) noexcept;

  int get() const noexcept { return descriptor_; }
  explicit operator bool() const noexcept { return descriptor_ >= 0; }

 private:
  int descriptor_;
};

/// The file of a user defaults object: a binary property list, replaced as a whole, so that whoever
/// reads finds all of one state at any moment, also after a crash or power failure. Beside it stand
/// FILE.lock, which writers lock and which stays, and FILE.new, what is being written.
///
/// Used by one thread at a time.
class DefaultsFile final {
 public:
  enum class State {
    unchanged,   ///< since it was last read or written
    read,        ///< and its contents answered
    missing,     ///< no such file
    damaged,     ///< no property list, or one whose root is no dictionary
    unreadable,  ///< it could not be opened or read; see `error`
  };

  explicit DefaultsFile(std::string path) : path_(std::move(path)) {}

  const std::string& path() const noexcept { return path_; }

  /// Reads the file unless it is the one that was last read or written.
  State read(Ref<NSDictionary>& contents);

  /// Locks other processes, and other objects in this one, out of writing; waits for them. Makes
  /// the folder (mode 0700) first, durably, if there is none. The lock is released with its owner;
  /// none if that fails, see `error`.
  OwnedDescriptor lock();

  /// Replaces the file (mode 0600), durably. To be called with the lock held. Fails also if the
  /// values together are no property list that could be read again. On failure the old file stands.
  bool write(const NSDictionary& contents);

  /// Renames the file to FILE.damaged-N and answers the new name; absent if that fails, see
  /// `error`. To be called with the lock held.
  std::optional<std::string> setAside();

  /// Why the last operation failed.
  const Ref<NSError>& error() const noexcept { return error_; }

 private:
  State fail(State state, Ref<NSError> error);
  std::nullopt_t failWriting(const std::string& path);
  static bool writeWhole(int descriptor, std::string_view bytes);

  std::string path_;
  /// What was last read or written, kept open so that no later file gets its inode.
  OwnedDescriptor known_;
  struct stat knownStatus_ = {};
  Ref<NSError> error_;
};

}  // namespace rvf
