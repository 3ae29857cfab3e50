// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Values/CheckedIterator.h"
#include "Platform/Values/NSArray.h"
#include "Platform/Values/ObjectHash.h"

namespace rvf {

/// A map from objects, mostly texts, to objects, none of them absent (that raises
/// `NSInvalidArgumentException`). In no defined order. Keys must keep their value while they are
/// in it. Immutable, so safe to share between threads; but what is passed around as a dictionary
/// may be an `NSMutableDictionary`. `copyOfObject` makes sure.
///
/// Thread: any, if it is no mutable one. Lifetime: keeps its keys and values.
class RVF_EXPORT NSDictionary : public NSObject {
 public:
  using Entries = std::unordered_map<id, id, ObjectHash, ObjectEqual>;
  using TextEntries = std::initializer_list<std::pair<std::string_view, id>>;

  NSDictionary() = default;
  explicit NSDictionary(Entries entries);

  /// Without entries.
  static Ref<NSDictionary> dictionary();
  /// From text keys; of two equal keys the later one counts.
  static Ref<NSDictionary> dictionaryWithEntries(TextEntries entries);

  static Class classObject();
  Class isa() const override;

  /// Entries.
  std::size_t count() const noexcept { return entries_.size(); }
  /// Absent if there is no entry.
  id objectForKey(const id& key) const;
  id objectForKey(std::string_view key) const;
  /// The entry as text; absent if there is none or it is no text.
  std::optional<std::string> textForKey(std::string_view key) const;
  Ref<NSArray> allKeys() const;
  Ref<NSArray> allValues() const;

  /// For loops over the entries, pairs of key and value. If the dictionary is changed meanwhile,
  /// the next step raises `NSGenericException`.
  auto begin() const { return CheckedIterator(*this, changes_, entries_.begin()); }
  auto end() const { return CheckedIterator(*this, changes_, entries_.end()); }
  /// The entries themselves, where nothing can change the dictionary meanwhile.
  const Entries& entries() const noexcept { return entries_; }

  bool isEqual(const NSObject* other) const override;
  std::size_t hash() const override;
  /// "{key = value; …}" with the keys in order of their descriptions.
  std::string description() const override;

 protected:
  /// Raises for an absent key or value.
  static void requireEntry(const id& key, const id& value);
  /// For one change.
  Entries& mutableEntries() noexcept {
    ++changes_;
    return entries_;
  }

 private:
  Entries entries_;
  std::size_t changes_ = 0;
};

}  // namespace rvf
