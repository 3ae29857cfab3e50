// SPDX-License-Identifier: Apache-2.0
#include "Platform/Storage/DefaultsFile.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <string_view>
#include <utility>

#include "Platform/Storage/BinaryPropertyListWriter.h"
#include "Platform/Storage/FileContents.h"
#include "Platform/Storage/NSPropertyListSerialization.h"
#include "Platform/Storage/PropertyListError.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

constexpr mode_t kOwnerOnly = 0600;
constexpr long NSFileWriteUnknownError = 512;
constexpr long NSFileWriteNoPermissionError = 513;
constexpr long NSFileWriteOutOfSpaceError = 640;
constexpr long NSFileWriteVolumeReadOnlyError = 642;

long writeErrorCode(int errorNumber) noexcept {
  switch (errorNumber) {
    case EACCES:
    case EPERM:
      return NSFileWriteNoPermissionError;
    case ENOSPC:
    case EDQUOT:
      return NSFileWriteOutOfSpaceError;
    case EROFS:
      return NSFileWriteVolumeReadOnlyError;
    default:
      return NSFileWriteUnknownError;
  }
}

std::string folderOf(const std::string& path) {
  const auto folder = std::filesystem::path(path).parent_path();
  return folder.empty() ? "." : folder.string();
}

/// The names in the folder reach the disk with it. Some file systems cannot do that for folders at
/// all, and say EINVAL: there it has to do without.
bool makeDurable(const std::string& folder) {
  const OwnedDescriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  return opened && (fsync(opened.get()) == 0 || errno == EINVAL);
}

/// A folder whose name may get lost is removed again: the next attempt would take it for durable.
bool makeOneFolder(const std::string& folder) {
  if (mkdir(folder.c_str(), 0700) != 0) return errno == EEXIST;
  if (makeDurable(folderOf(folder))) return true;
  const int problem = errno;
  rmdir(folder.c_str());
  errno = problem;
  return false;
}

/// Makes the folder and those above it, durably, each for its owner only, as the XDG Base Directory
/// Specification asks.
bool makeFolder(const std::string& folder) {
  if (makeOneFolder(folder)) return true;
  const std::string above = folderOf(folder);
  return errno == ENOENT && above != folder && makeFolder(above) && makeOneFolder(folder);
}

/// Never over another file. Not every file system knows the flag; a hard link is never made over a
/// file either.
bool renameWithoutReplacing(const std::string& from, const std::string& to) {
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
  if (errno != EINVAL && errno != ENOSYS) return false;
  return link(from.c_str(), to.c_str()) == 0 && unlink(from.c_str()) == 0;
}

bool isSameFile(const struct stat& a, const struct stat& b) noexcept {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

bool isUnchanged(const struct stat& a, const struct stat& b) noexcept {
  return isSameFile(a, b) && a.st_size == b.st_size && a.st_mtim.tv_sec == b.st_mtim.tv_sec &&
         a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

}  // namespace

OwnedDescriptor::~OwnedDescriptor() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

OwnedDescriptor::OwnedDescriptor(OwnedDescriptor&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)) {}

OwnedDescriptor& OwnedDescriptor::operator=(OwnedDescriptor&& other) noexcept {
  std::swap(descriptor_, other.descriptor_);
  return *this;
}

DefaultsFile::State DefaultsFile::fail(State state, Ref<NSError> error) {
  known_ = OwnedDescriptor();
  error_ = std::move(error);
  return state;
}

DefaultsFile::State DefaultsFile::read(Ref<NSDictionary>& contents) {
  OwnedDescriptor file(::open(path_.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  struct stat status = {};
  if (!file || fstat(file.get(), &status) != 0) {
    const int problem = errno;
    const bool isMissing = problem == ENOENT || problem == ENOTDIR;
    return fail(isMissing ? State::missing : State::unreadable,
                fileError(fileReadErrorCode(problem), path_, problem));
  }
  if (known_ && isUnchanged(status, knownStatus_)) return State::unchanged;
  Ref<NSError> error;
  const Ref<NSData> data = contentsOfDescriptor(file.get(), path_, &error);
  if (!data) return fail(State::unreadable, error);
  const id root = NSPropertyListSerialization::propertyListWithData(data, nullptr, &error);
  auto dictionary = std::dynamic_pointer_cast<NSDictionary>(root);
  if (!dictionary) {
    if (root) error = propertyListError(NSPropertyListReadCorruptError, "no dictionary");
    return fail(State::damaged, error);
  }
  contents = std::move(dictionary);
  known_ = std::move(file);
  knownStatus_ = status;
  return State::read;
}

std::nullopt_t DefaultsFile::failWriting(const std::string& path) {
  const int problem = errno;
  error_ = fileError(writeErrorCode(problem), path, problem);
  return std::nullopt;
}

OwnedDescriptor DefaultsFile::lock() {
  const std::string path = path_ + ".lock";
  while (true) {
    if (!makeFolder(folderOf(path_))) {
      failWriting(folderOf(path_));
      return OwnedDescriptor();
    }
    OwnedDescriptor file(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, kOwnerOnly));
    int result = file ? 0 : -1;
    while (file && (result = flock(file.get(), LOCK_EX)) != 0 && errno == EINTR) {
    }
    if (result != 0) {
      failWriting(path);
      return OwnedDescriptor();
    }
    // Folder and lock may have been replaced by others while this waited.
    struct stat locked = {};
    struct stat current = {};
    const bool isCurrent = fstat(file.get(), &locked) == 0 && stat(path.c_str(), &current) == 0 &&
                           isSameFile(locked, current);
    if (isCurrent) return file;
  }
}

bool DefaultsFile::writeWhole(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
    if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
    if (count < 0 && errno != EINTR) return false;
  }
  return fsync(descriptor) == 0;
}

bool DefaultsFile::write(const NSDictionary& contents) {
  std::string problem;
  const std::string bytes =
      writtenBinaryPropertyList(std::const_pointer_cast<NSObject>(contents.shared_from_this()),
                                ArchiveReferences::refused, problem);
  if (bytes.empty()) {
    error_ = NSError::errorWithDomain(
        NSCocoaErrorDomain, NSPropertyListWriteInvalidError,
        NSDictionary::dictionaryWithEntries(
            {{NSFilePathErrorKey, box(path_)},
             {"NSDebugDescription", box("the values of all keys together: " + problem)}}));
    return false;
  }
  const std::string path = path_ + ".new";
  const OwnedDescriptor file(
      ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, kOwnerOnly));
  // Kept for reading only: a file open for writing would keep its disk from becoming read-only.
  OwnedDescriptor kept(file ? ::open(path.c_str(), O_RDONLY | O_CLOEXEC) : -1);
  struct stat status = {};
  const bool isWritten = file && kept && fchmod(file.get(), kOwnerOnly) == 0 &&
                         writeWhole(file.get(), bytes) && fstat(file.get(), &status) == 0 &&
                         rename(path.c_str(), path_.c_str()) == 0;
  if (!isWritten) {
    failWriting(path);
    unlink(path.c_str());
    return false;
  }
  known_ = std::move(kept);
  knownStatus_ = status;
  if (makeDurable(folderOf(path_))) return true;
  failWriting(path_);
  return false;
}

std::optional<std::string> DefaultsFile::setAside() {
  for (int number = 1;; ++number) {
    std::string path = path_ + ".damaged-" + std::to_string(number);
    if (renameWithoutReplacing(path_, path)) return path;
    if (errno != EEXIST) return failWriting(path_);
  }
}

}  // namespace rvf
