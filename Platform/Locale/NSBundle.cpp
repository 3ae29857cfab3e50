// SPDX-License-Identifier: Apache-2.0
#include "Platform/Locale/NSBundle.h"

#include <dlfcn.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <functional>
#include <map>
#include <mutex>
#include <system_error>
#include <utility>
#include <vector>

#include "Platform/Locale/MessageCatalogue.h"
#include "Platform/Locale/NSLocale.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"

namespace rvf {
namespace {

/// Beside the folder of the file that holds this code, wherever it was installed.
std::string installedCatalogueFolder() {
  Dl_info file{};
  if (::dladdr(reinterpret_cast<const void*>(&installedCatalogueFolder), &file) == 0) return {};
  std::error_code error;
  const auto code = std::filesystem::canonical(file.dli_fname, error);
  if (error) return {};
  return (code.parent_path() / RVF_CATALOGUE_FOLDER).lexically_normal().string();
}

const ClassRegistration kRegistration(&NSBundle::classObject);

constinit std::atomic<const NSBundleRegistration*> firstBundle{nullptr};

}  // namespace

/// Everything that may change after construction, under one lock.
class NSBundle::State {
 public:
  State(std::string_view defaultTable, Ref<NSDictionary> facts)
      : defaultTable_(defaultTable), facts_(std::move(facts)) {}

  Ref<NSDictionary> facts() const {
    const std::lock_guard lock(mutex_);
    return facts_;
  }

  void setFacts(Ref<NSDictionary> facts) {
    const std::lock_guard lock(mutex_);
    facts_.swap(facts);
  }

  void setCatalogueFolder(std::optional<std::string> folder) {
    const std::lock_guard lock(mutex_);
    folder_ = std::move(folder);
    catalogues_.clear();
  }

  /// Catalogues are read once and kept for one locale at a time, because a process rarely changes
  /// it and then for everything.
  std::shared_ptr<const MessageCatalogue> catalogue(std::string_view table) {
    const Ref<NSLocale> locale = NSLocale::currentLocale();
    const std::lock_guard lock(mutex_);
    if (localeIdentifier_ != locale->localeIdentifier()) {
      localeIdentifier_ = locale->localeIdentifier();
      catalogues_.clear();
    }
    if (table.empty()) table = defaultTable_;
    auto found = catalogues_.find(table);
    if (found == catalogues_.end()) {
      found =
          catalogues_.emplace(table, std::make_shared<MessageCatalogue>(folders(), table, *locale))
              .first;
    }
    return found->second;
  }

 private:
  std::vector<std::string> folders() const {
    std::vector<std::string> folders;
    if (folder_) folders.push_back(*folder_);
    folders.push_back(installedCatalogueFolder());
    return folders;
  }

  mutable std::mutex mutex_;
  const std::string defaultTable_;
  Ref<NSDictionary> facts_;
  std::optional<std::string> folder_;
  std::string localeIdentifier_;  ///< of the catalogues
  std::map<std::string, std::shared_ptr<const MessageCatalogue>, std::less<>> catalogues_;
};

NSBundle::NSBundle(std::string_view defaultTable, Ref<NSDictionary> infoDictionary)
    : state_(std::make_unique<State>(
          defaultTable, infoDictionary ? std::move(infoDictionary) : NSDictionary::dictionary())) {}

NSBundle::~NSBundle() = default;

Ref<NSBundle> NSBundle::mainBundle() {
  static const auto kBundle = std::make_shared<NSBundle>(program_invocation_short_name, nullptr);
  return kBundle;
}

Ref<NSBundle> NSBundle::bundleForClass(Class aClass) {
  const std::string_view name = class_getName(aClass);
  const NSBundleRegistration* registration = firstBundle.load(std::memory_order_acquire);
  for (; registration; registration = registration->next_)
    if (name.starts_with(registration->classNamePrefix_)) return registration->bundle_();
  return mainBundle();
}

Class NSBundle::classObject() {
  static const Class kClass =
      ClassBuilder<NSBundle>("NSBundle", NSObject::classObject())
          .property("infoDictionary", "T@\"NSDictionary\",R,C,N,V_infoDictionary")
          .method<&NSBundle::infoDictionary>("infoDictionary")
          .registered();
  return kClass;
}

Class NSBundle::isa() const {
  return classObject();
}

Ref<NSDictionary> NSBundle::infoDictionary() const {
  return state_->facts();
}

void NSBundle::setInfoDictionary(Ref<NSDictionary> infoDictionary) {
  state_->setFacts(infoDictionary ? std::move(infoDictionary) : NSDictionary::dictionary());
}

void NSBundle::setCatalogueFolder(std::optional<std::string> folder) {
  state_->setCatalogueFolder(std::move(folder));
}

std::string NSBundle::localizedStringForKey(std::string_view key, std::string_view table) const {
  return state_->catalogue(table)->textForKey(key).value_or(std::string(key));
}

NSBundleRegistration::NSBundleRegistration(const char* classNamePrefix,
                                           Ref<NSBundle> (*bundle)()) noexcept
    : classNamePrefix_(classNamePrefix),
      bundle_(bundle),
      next_(firstBundle.load(std::memory_order_relaxed)) {
  while (!firstBundle.compare_exchange_weak(next_, this, std::memory_order_release)) {
  }
}

}  // namespace rvf
