// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <iterator>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// Raises `NSGenericException`: `collection` was changed while it was enumerated.
[[noreturn]] RVF_EXPORT void raiseMutationWhileEnumerating(const NSObject& collection);

/// Walks a collection that may be mutable and raises `NSGenericException` at the first step after
/// it was changed, before it touches anything. Elements are handed out by value, so they outlive a
/// change.
///
/// Thread: that of the collection. Lifetime: refers to the collection, which must outlive it.
template <class Position>
class CheckedIterator {
 public:
  using value_type = std::iter_value_t<Position>;
  using difference_type = std::ptrdiff_t;
  using iterator_concept = std::forward_iterator_tag;
  using iterator_category = std::input_iterator_tag;  // because elements are values
  using reference = value_type;
  using pointer = void;

  CheckedIterator() = default;
  /// `changes` counts the changes of the collection.
  CheckedIterator(const NSObject& collection, const std::size_t& changes, Position position)
      : collection_(&collection), changes_(&changes), seen_(changes), position_(position) {}

  value_type operator*() const {
    check();
    return *position_;
  }
  CheckedIterator& operator++() {
    check();
    ++position_;
    return *this;
  }
  CheckedIterator operator++(int) {
    const CheckedIterator old = *this;
    ++*this;
    return old;
  }
  friend bool operator==(const CheckedIterator& a, const CheckedIterator& b) {
    return a.position_ == b.position_;
  }

 private:
  void check() const {
    if (*changes_ != seen_) raiseMutationWhileEnumerating(*collection_);
  }

  const NSObject* collection_ = nullptr;
  const std::size_t* changes_ = nullptr;
  std::size_t seen_ = 0;
  Position position_{};
};

}  // namespace rvf
