// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Storage/NSCoder.h"
#include "Platform/Values/NSData.h"
#include "Platform/Values/NSError.h"

namespace rvf {

/// Codes in `NSCocoaErrorDomain`.
inline constexpr long NSCoderReadCorruptError = 4864;

/// Makes the objects again that `NSKeyedArchiver`, or another program, wrote into an archive.
///
///     Ref<NSError> error;
///     const id order = NSKeyedUnarchiver::unarchiveTopLevelObjectWithData(data, &error);
///
/// Each object is made once, however many refer to it. Besides texts, numbers, data blocks, dates,
/// arrays, dictionaries, sets and `NSNull` these are instances of classes that have the methods
/// `alloc` and `initWithCoder:`, see `NSCoder`, and of no others, whatever an archive names. An
/// object that is being read is handed out, incomplete, to those that it leads to; only immutable
/// collections cannot contain themselves.
///
/// Damaged and hostile archives are a run-time failure: from then on everything decodes as absent,
/// 0 or false, and `error` says why. So are more than 1,000 objects that lead to one another in a
/// row, and keys or elements of sets that lead back to themselves or unfold to millions of objects.
/// What the call that failed made by then goes, but for objects that own one another in a circle.
/// What earlier calls answered stays as it is.
///
/// Thread: one at a time; held by a `Ref`. Lifetime: keeps the objects it made until it goes.
class RVF_EXPORT NSKeyedUnarchiver final : public NSCoder {
 public:
  /// The object under "root". Absent, without error, if that is what was archived. An `NSException`
  /// that an `initWithCoder:` raises is an error here.
  static id unarchiveTopLevelObjectWithData(const Ref<NSData>& data, Ref<NSError>* error = nullptr);

  /// Absent if the data is no archive.
  static Ref<NSKeyedUnarchiver> initForReadingFromData(const Ref<NSData>& data,
                                                       Ref<NSError>* error = nullptr);
  ~NSKeyedUnarchiver() override;

  static Class classObject();
  Class isa() const override;

  /// Called from outside of `initWithCoder:`, these read what stands at the top of the archive. A
  /// value of another kind under the key is an error; numbers read as one another.
  bool containsValueForKey(std::string_view key) override;
  id decodeObjectForKey(std::string_view key) override;
  bool decodeBoolForKey(std::string_view key) override;
  long decodeIntegerForKey(std::string_view key) override;
  double decodeDoubleForKey(std::string_view key) override;

  /// The first failure; absent if there was none. Its code is `NSCoderReadCorruptError`, and
  /// "NSDebugDescription" in its user info says what is wrong.
  const Ref<NSError>& error() const noexcept;

 private:
  class Graph;
  struct Private {};

 public:
  NSKeyedUnarchiver(Private, std::unique_ptr<Graph> graph);

 private:
  std::unique_ptr<Graph> graph_;
};

}  // namespace rvf
