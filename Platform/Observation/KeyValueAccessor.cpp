// SPDX-License-Identifier: Apache-2.0
#include "Platform/Observation/KeyValueAccessor.h"

#include <array>
#include <cstdint>
#include <functional>
#include <unordered_map>

#include "Platform/Observation/ValueBoxing.h"
#include "Platform/Runtime/ClassChanges.h"
#include "Platform/Runtime/NSMethodSignature.h"

namespace rvf {
namespace {

/// Accessors by class and key, as one thread found them.
class AccessorCache final {
 public:
  const KeyValueAccessor* find(Class aClass, std::string_view key) {
    const std::uint64_t generation = classChangeCount();
    if (generation != generation_) {
      accessors_.clear();
      generation_ = generation;
    }
    const auto found = accessors_.find(View{aClass, key});
    return found == accessors_.end() ? nullptr : &found->second;
  }
  /// Only after `find` of the same.
  void add(Class aClass, std::string_view key, const KeyValueAccessor& accessor) {
    accessors_.emplace(Name{aClass, std::string(key)}, accessor);
  }

 private:
  using View = std::pair<Class, std::string_view>;
  using Name = std::pair<Class, std::string>;
  struct Hash {
    using is_transparent = void;
    template <class Any>
    std::size_t operator()(const Any& name) const noexcept {
      return std::hash<std::string_view>()(name.second) ^ std::hash<Class>()(name.first);
    }
  };
  struct Equal {
    using is_transparent = void;
    template <class A, class B>
    bool operator()(const A& a, const B& b) const noexcept {
      return a.first == b.first && a.second == b.second;
    }
  };

  std::unordered_map<Name, KeyValueAccessor, Hash, Equal> accessors_;
  std::uint64_t generation_ = 0;
};

std::optional<KeyValueAccessor> getterMethod(Class aClass, const std::string& name) {
  const SEL selector = SEL::known(name);
  const IMP implementation = class_getMethodImplementation(aClass, selector);
  if (!implementation) return std::nullopt;
  constexpr std::string_view kNoArguments = "@:";
  std::string encoding = implementation.typeEncoding();
  if (!encoding.ends_with(kNoArguments)) return std::nullopt;
  encoding.resize(encoding.size() - kNoArguments.size());
  if (!isBoxableEncoding(encoding)) return std::nullopt;
  return KeyValueAccessor{selector, implementation, nullptr, boxingCode(encoding)};
}

std::optional<KeyValueAccessor> setterMethod(Class aClass, const std::string& name) {
  const SEL selector = SEL::known(name);
  const IMP implementation = class_getMethodImplementation(aClass, selector);
  if (!implementation) return std::nullopt;
  const auto signature = NSMethodSignature::signatureWithTypes(implementation.typeEncoding());
  if (!signature || signature->numberOfArguments() != 3) return std::nullopt;
  const std::string& encoding = signature->getArgumentTypeAtIndex(2);
  if (!isBoxableEncoding(encoding)) return std::nullopt;
  return KeyValueAccessor{selector, implementation, nullptr, boxingCode(encoding)};
}

/// What follows this letter in the attributes of the property that the key names; empty if nothing.
std::string declaredAccessor(Class aClass, std::string_view key, char letter) {
  const Property* property = class_getProperty(aClass, key);
  if (!property) return {};
  const std::string mark = std::string(",") + letter;
  const std::size_t begin = property->attributes.rfind(mark);
  if (begin == std::string::npos) return {};
  const std::string rest = property->attributes.substr(begin + mark.size());
  return rest.substr(0, rest.find(','));
}

template <class IsUsable>
std::optional<KeyValueAccessor> accessibleVariable(Class aClass, std::string_view key,
                                                   IsUsable isUsable) {
  const std::string plain(key);
  const std::string capitalized = capitalizedKey(key);
  const std::array names{"_" + plain, "_is" + capitalized, plain, "is" + capitalized};
  for (const std::string& name : names) {
    const Ivar* variable = class_getInstanceVariable(aClass, name);
    if (!variable || !isUsable(*variable) || !isBoxableEncoding(variable->typeEncoding)) continue;
    return KeyValueAccessor{SEL(), IMP(), variable, boxingCode(variable->typeEncoding)};
  }
  return std::nullopt;
}

std::optional<KeyValueAccessor> searchGetter(Class aClass, std::string_view key) {
  const std::string plain(key);
  const std::string capitalized = capitalizedKey(key);
  for (const std::string& name :
       std::array{"get" + capitalized, plain, "is" + capitalized, "_" + plain}) {
    if (const auto method = getterMethod(aClass, name)) return method;
  }
  const auto variable =
      accessibleVariable(aClass, key, [](const Ivar& candidate) { return candidate.read; });
  return variable ? variable : getterMethod(aClass, declaredAccessor(aClass, key, 'G'));
}

std::optional<KeyValueAccessor> searchSetter(Class aClass, std::string_view key) {
  const std::string capitalized = capitalizedKey(key);
  for (const std::string& name :
       std::array{"set" + capitalized + ":", "_set" + capitalized + ":"}) {
    if (const auto method = setterMethod(aClass, name)) return method;
  }
  const auto variable =
      accessibleVariable(aClass, key, [](const Ivar& candidate) { return candidate.write; });
  return variable ? variable : setterMethod(aClass, declaredAccessor(aClass, key, 'S'));
}

/// Keys that have no accessor are not remembered: they may come from outside, without end.
template <class Search>
std::optional<KeyValueAccessor> remembered(AccessorCache* cache, Class aClass, std::string_view key,
                                           Search search) {
  if (!cache) return search(aClass, key);
  if (const KeyValueAccessor* known = cache->find(aClass, key)) return *known;
  const std::optional<KeyValueAccessor> found = search(aClass, key);
  if (found) cache->add(aClass, key, *found);
  return found;
}

// Destructors of other thread-local objects may still read and set keys when the caches are gone.
constinit thread_local bool cachesAreGone = false;

struct ThreadCaches {
  AccessorCache getters;
  AccessorCache setters;

  ThreadCaches() = default;
  ThreadCaches(const ThreadCaches&) = delete;
  ThreadCaches& operator=(const ThreadCaches&) = delete;
  ~ThreadCaches() { cachesAreGone = true; }
};

ThreadCaches* threadCaches() {
  if (cachesAreGone) return nullptr;
  thread_local ThreadCaches caches;
  return &caches;
}

AccessorCache* getterCache() {
  ThreadCaches* const caches = threadCaches();
  return caches ? &caches->getters : nullptr;
}

AccessorCache* setterCache() {
  ThreadCaches* const caches = threadCaches();
  return caches ? &caches->setters : nullptr;
}

}  // namespace

std::string capitalizedKey(std::string_view key) {
  std::string capitalized(key);
  if (!key.empty() && key.front() >= 'a' && key.front() <= 'z') {
    capitalized.front() = static_cast<char>(key.front() - 'a' + 'A');
  }
  return capitalized;
}

std::optional<KeyValueAccessor> findGetter(Class aClass, std::string_view key) {
  return remembered(getterCache(), aClass, key, &searchGetter);
}

std::optional<KeyValueAccessor> findSetter(Class aClass, std::string_view key) {
  return remembered(setterCache(), aClass, key, &searchSetter);
}

const KeyValueAccessor* rememberedGetter(Class aClass, std::string_view key) {
  AccessorCache* const cache = getterCache();
  return cache ? cache->find(aClass, key) : nullptr;
}

const KeyValueAccessor* rememberedSetter(Class aClass, std::string_view key) {
  AccessorCache* const cache = setterCache();
  return cache ? cache->find(aClass, key) : nullptr;
}

}  // namespace rvf
