// SPDX-License-Identifier: Apache-2.0
#include "Platform/Storage/DefaultsStore.h"

#include <utility>

#include "Platform/Runtime/ScopeExit.h"
#include "Platform/Text/NSLog.h"
#include "Platform/Values/NSString.h"

namespace rvf {

/// Holds other processes off, unless an outer one does already.
class DefaultsStore::LockHold final {
 public:
  explicit LockHold(DefaultsStore& store) : store_(store), isOuter_(!store.lock_) {
    if (isOuter_) store_.lock_ = store_.file_->lock();
  }
  ~LockHold() {
    if (isOuter_) store_.lock_ = OwnedDescriptor();
  }
  LockHold(const LockHold&) = delete;
  LockHold& operator=(const LockHold&) = delete;

  explicit operator bool() const { return static_cast<bool>(store_.lock_); }

 private:
  DefaultsStore& store_;
  const bool isOuter_;
};

DefaultsStore::DefaultsStore(std::optional<std::string> path) {
  if (path) file_.emplace(*std::move(path));
  isLoaded_ = !file_;
}

void DefaultsStore::load() {
  if (isLoaded_.load(std::memory_order_acquire)) return;
  const std::lock_guard fileGuard(fileMutex_);
  if (isLoaded_) return;
  refresh();
  isLoaded_.store(true, std::memory_order_release);
}

id DefaultsStore::objectForKey(std::string_view key) {
  load();
  const std::lock_guard guard(valuesMutex_);
  for (const Values* values : {&values_, &registered_}) {
    if (const auto found = values->find(key); found != values->end()) return found->second;
  }
  return nullptr;
}

void DefaultsStore::setObject(id value, std::string_view key) {
  load();
  const std::lock_guard guard(valuesMutex_);
  if (value) {
    values_.insert_or_assign(std::string(key), std::move(value));
  } else if (const auto found = values_.find(key); found != values_.end()) {
    values_.erase(found);
  }
  if (file_) changed_.emplace(key);
}

void DefaultsStore::registerDefaults(const NSDictionary& values) {
  const std::lock_guard guard(valuesMutex_);
  for (const auto& [key, value] : values.entries())
    registered_.insert_or_assign(key->description(), value);
}

bool DefaultsStore::isChanged() const {
  const std::lock_guard guard(valuesMutex_);
  return !changed_.empty();
}

Ref<NSError> DefaultsStore::error() const {
  const std::lock_guard guard(valuesMutex_);
  return error_;
}

bool DefaultsStore::fail() {
  const std::lock_guard guard(valuesMutex_);
  error_ = file_->error();
  return false;
}

void DefaultsStore::takeOver(const NSDictionary& contents) {
  Values values;  // in the end the old ones, which may take long to free: not with the mutex held
  for (const auto& [key, value] : contents.entries())
    values.insert_or_assign(key->description(), value);
  const std::lock_guard guard(valuesMutex_);
  for (const std::string& key : changed_) {
    const auto mine = values_.find(key);
    if (mine == values_.end()) {
      values.erase(key);
    } else {
      values.insert_or_assign(key, mine->second);
    }
  }
  values_.swap(values);
}

void DefaultsStore::keepAllThatIsKnown() {
  const std::lock_guard guard(valuesMutex_);
  for (const auto& [key, value] : values_)
    changed_.insert(key);
}

/// Brings the values up to the file's. False if the file's are out of reach, and must not be
/// replaced.
bool DefaultsStore::refresh() {
  Ref<NSDictionary> contents;
  switch (file_->read(contents)) {
    case DefaultsFile::State::unchanged:
      return true;
    case DefaultsFile::State::read:
      takeOver(*contents);
      return true;
    case DefaultsFile::State::missing:
      keepAllThatIsKnown();
      return true;
    case DefaultsFile::State::damaged:
      return setDamagedAside();
    default:
      return fail();
  }
}

/// Another process may have been faster: only what is still damaged under the lock is renamed.
bool DefaultsStore::setDamagedAside() {
  Ref<NSDictionary> contents;
  const LockHold hold(*this);
  if (!hold) {
    tellOfDamage(std::nullopt);
    return fail();
  }
  const DefaultsFile::State state = file_->read(contents);
  if (state == DefaultsFile::State::read) takeOver(*contents);
  if (state == DefaultsFile::State::unreadable) return fail();
  if (state == DefaultsFile::State::damaged) {
    const auto newPath = file_->setAside();
    tellOfDamage(newPath);
    if (!newPath) return fail();
  }
  if (!contents) keepAllThatIsKnown();
  return true;
}

void DefaultsStore::tellOfDamage(const std::optional<std::string>& newPath) {
  if (newPath) {
    NSLog("User defaults: %@ is damaged; it was set aside as %@", file_->path(), *newPath);
  } else if (!isDamageTold_) {
    NSLog("User defaults: %@ is damaged and cannot be set aside", file_->path());
  }
  isDamageTold_ = !newPath;
}

bool DefaultsStore::write() {
  NSDictionary::Entries entries;
  std::set<std::string, std::less<>> written;
  {
    const std::lock_guard guard(valuesMutex_);
    for (const auto& [key, value] : values_)
      entries.emplace(box(key), value);
    written.swap(changed_);
  }
  const ScopeExit kept([&] {
    const std::lock_guard guard(valuesMutex_);
    changed_.merge(written);
  });
  if (!file_->write(*std::make_shared<NSDictionary>(std::move(entries)))) return fail();
  written.clear();
  return true;
}

bool DefaultsStore::synchronize() {
  if (!file_) return true;
  load();
  const std::lock_guard fileGuard(fileMutex_);
  if (!isChanged()) {
    if (!refresh()) return false;
    if (!isChanged()) {
      const std::lock_guard guard(valuesMutex_);
      error_ = nullptr;
      return true;
    }
  }
  const LockHold hold(*this);
  if (!hold) return fail();
  if (!refresh() || !write()) return false;
  const std::lock_guard guard(valuesMutex_);
  error_ = nullptr;
  return true;
}

bool DefaultsStore::performExclusively(const std::function<void()>& work) {
  if (!file_) {
    work();
    return true;
  }
  load();
  const std::lock_guard fileGuard(fileMutex_);
  const LockHold hold(*this);
  if (!hold) return fail();
  if (!refresh()) return false;
  work();
  return synchronize();
}

}  // namespace rvf
