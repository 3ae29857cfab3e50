// SPDX-License-Identifier: Apache-2.0
#include "Platform/Storage/NSUserDefaults.h"

#include <errno.h>
#include <pwd.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <mutex>
#include <utility>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Storage/DefaultsStore.h"
#include "Platform/Storage/PropertyListValue.h"
#include "Platform/Text/Text.h"
#include "Platform/Values/NSArray.h"
#include "Platform/Values/NSData.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSUserDefaults::classObject);

constexpr std::string_view kFileName = "defaults.plist";

std::atomic<id (*)(std::string_view)> urlOfStoredText{nullptr};

template <class T>
id ofKind(id value) {
  return dynamic_cast<const T*>(value.get()) ? std::move(value) : nullptr;
}

/// What a number or a text reads as; `T()` for anything else.
template <class T>
T reading(const id& value, T (NSNumber::*ofNumber)() const, T (*ofText)(std::string_view)) {
  if (const auto* number = dynamic_cast<const NSNumber*>(value.get())) return (number->*ofNumber)();
  const std::string* text = value ? textOfObject(*value) : nullptr;
  return text ? ofText(*text) : T();
}

std::string homeOfUser() {
  std::array<char, 16384> buffer = {};
  struct passwd entry = {};
  struct passwd* found = nullptr;
  getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found);
  return found ? found->pw_dir : "/nonexistent";  // the home of those who have none
}

/// The environment is read once, when the standard defaults are made.
std::string environmentText(const char* name) {
  const char* value = getenv(name);  // NOLINT(concurrency-mt-unsafe)
  return value ? value : "";
}

struct StandardDefaults {
  std::mutex mutex;
  std::string folderName = program_invocation_short_name;
  Ref<NSUserDefaults> defaults;
};

StandardDefaults& standardDefaults() {
  static StandardDefaults standard;
  return standard;
}

bool isPathComponent(std::string_view name) {
  return !name.empty() && name != "." && name != ".." && name.find('/') == std::string_view::npos &&
         name.find('\0') == std::string_view::npos;
}

}  // namespace

StoredURLRegistration::StoredURLRegistration(id (*urlOfText)(std::string_view text)) noexcept {
  urlOfStoredText = urlOfText;
}

Ref<NSUserDefaults> NSUserDefaults::standardUserDefaults() {
  StandardDefaults& standard = standardDefaults();
  const std::lock_guard guard(standard.mutex);
  if (!standard.defaults) {
    standard.defaults = userDefaultsWithFile(
        filePath(environmentText("XDG_CONFIG_HOME"), environmentText("HOME"), standard.folderName));
  }
  return standard.defaults;
}

void NSUserDefaults::setStandardFolderName(std::string_view name) {
  if (!isPathComponent(name)) {
    NSException::raise(NSInvalidArgumentException, "a folder's name is one path component");
  }
  StandardDefaults& standard = standardDefaults();
  const std::lock_guard guard(standard.mutex);
  if (standard.defaults) {
    NSException::raise(NSInternalInconsistencyException,
                       "the standard user defaults are in use already");
  }
  standard.folderName = name;
}

Ref<NSUserDefaults> NSUserDefaults::userDefaultsWithFile(std::string_view path) {
  return Ref<NSUserDefaults>(new NSUserDefaults(std::string(path)));
}

std::string NSUserDefaults::filePath(std::string_view configurationHome, std::string_view home,
                                     std::string_view folderName) {
  std::string folder(configurationHome);
  if (!folder.starts_with('/')) {
    folder = (home.empty() ? homeOfUser() : std::string(home)) + "/.config";
  }
  return folder + '/' + std::string(folderName) + '/' + std::string(kFileName);
}

NSUserDefaults::NSUserDefaults(std::optional<std::string> path)
    : store_(std::make_unique<DefaultsStore>(std::move(path))) {}

NSUserDefaults::~NSUserDefaults() = default;

Class NSUserDefaults::classObject() {
  static const Class kClass =
      ClassBuilder<NSUserDefaults>("NSUserDefaults", NSObject::classObject())
          .method<&NSUserDefaults::objectForKey>("objectForKey:")
          .method<&NSUserDefaults::setObject>("setObject:forKey:")
          .method<&NSUserDefaults::removeObjectForKey>("removeObjectForKey:")
          .method<&NSUserDefaults::stringForKey>("stringForKey:")
          .method<&NSUserDefaults::arrayForKey>("arrayForKey:")
          .method<&NSUserDefaults::dictionaryForKey>("dictionaryForKey:")
          .method<&NSUserDefaults::dataForKey>("dataForKey:")
          .method<&NSUserDefaults::stringArrayForKey>("stringArrayForKey:")
          .method<&NSUserDefaults::URLForKey>("URLForKey:")
          .method<&NSUserDefaults::integerForKey>("integerForKey:")
          .method<&NSUserDefaults::floatForKey>("floatForKey:")
          .method<&NSUserDefaults::doubleForKey>("doubleForKey:")
          .method<&NSUserDefaults::boolForKey>("boolForKey:")
          .method<&NSUserDefaults::setInteger>("setInteger:forKey:")
          .method<&NSUserDefaults::setFloat>("setFloat:forKey:")
          .method<&NSUserDefaults::setDouble>("setDouble:forKey:")
          .method<&NSUserDefaults::setBool>("setBool:forKey:")
          .method<&NSUserDefaults::setURL>("setURL:forKey:")
          .method<&NSUserDefaults::registerDefaults>("registerDefaults:")
          .method<&NSUserDefaults::synchronize>("synchronize")
          .registered();
  return kClass;
}

Class NSUserDefaults::isa() const {
  return classObject();
}

id NSUserDefaults::objectForKey(std::string_view key) {
  return store_->objectForKey(key);
}

void NSUserDefaults::setObject(const id& object, std::string_view key) {
  if (!object) return removeObjectForKey(key);
  requirePropertyListKey(key);
  store_->setObject(propertyListSnapshot(object), key);
}

void NSUserDefaults::removeObjectForKey(std::string_view key) {
  store_->setObject(nullptr, key);
}

id NSUserDefaults::stringForKey(std::string_view key) {
  id value = objectForKey(key);
  if (const auto* number = dynamic_cast<const NSNumber*>(value.get())) {
    return box(number->stringValue());
  }
  return ofKind<NSString>(std::move(value));
}

id NSUserDefaults::arrayForKey(std::string_view key) {
  return ofKind<NSArray>(objectForKey(key));
}

id NSUserDefaults::dictionaryForKey(std::string_view key) {
  return ofKind<NSDictionary>(objectForKey(key));
}

id NSUserDefaults::dataForKey(std::string_view key) {
  return ofKind<NSData>(objectForKey(key));
}

id NSUserDefaults::stringArrayForKey(std::string_view key) {
  const auto array = std::dynamic_pointer_cast<NSArray>(objectForKey(key));
  const auto isText = [](const id& element) { return textOfObject(*element) != nullptr; };
  return array && std::ranges::all_of(array->objects(), isText) ? array : nullptr;
}

id NSUserDefaults::URLForKey(std::string_view key) {
  const auto text = unboxText(objectForKey(key));
  const auto makeURL = urlOfStoredText.load();
  return text && makeURL ? makeURL(*text) : nullptr;
}

long NSUserDefaults::integerForKey(std::string_view key) {
  return reading<long>(objectForKey(key), &NSNumber::integerValue,
                       [](std::string_view text) -> long { return integerValueOfText(text); });
}

float NSUserDefaults::floatForKey(std::string_view key) {
  return reading<float>(objectForKey(key), &NSNumber::floatValue, [](std::string_view text) {
    return static_cast<float>(doubleValueOfText(text));
  });
}

double NSUserDefaults::doubleForKey(std::string_view key) {
  return reading<double>(objectForKey(key), &NSNumber::doubleValue,
                         [](std::string_view text) { return doubleValueOfText(text); });
}

bool NSUserDefaults::boolForKey(std::string_view key) {
  return reading<bool>(objectForKey(key), &NSNumber::boolValue,
                       [](std::string_view text) { return boolValueOfText(text); });
}

void NSUserDefaults::setInteger(long value, std::string_view key) {
  setObject(box(value), key);
}

void NSUserDefaults::setFloat(float value, std::string_view key) {
  setObject(box(value), key);
}

void NSUserDefaults::setDouble(double value, std::string_view key) {
  setObject(box(value), key);
}

void NSUserDefaults::setBool(bool value, std::string_view key) {
  setObject(box(value), key);
}

void NSUserDefaults::setURL(const id& url, std::string_view key) {
  static const SEL kAbsoluteString("absoluteString");
  setObject(url ? box(send<std::string>(url, kAbsoluteString)) : nullptr, key);
}

void NSUserDefaults::registerDefaults(const Ref<NSDictionary>& values) {
  if (!values) return;
  store_->registerDefaults(static_cast<const NSDictionary&>(*propertyListSnapshot(values)));
}

bool NSUserDefaults::synchronize() {
  return store_->synchronize();
}

bool NSUserDefaults::performExclusively(const std::function<void()>& work) {
  return store_->performExclusively(work);
}

Ref<NSError> NSUserDefaults::synchronizationError() const {
  return store_->error();
}

}  // namespace rvf
