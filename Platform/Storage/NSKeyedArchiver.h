// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Storage/NSCoder.h"
#include "Platform/Values/NSData.h"

namespace rvf {

class NSKeyedArchiver;

/// What an archiver asks its delegate, on the thread and within the call that encodes.
///
/// Thread: that of the call that encodes. Lifetime: not owned by the archiver; one that is gone is
/// not asked.
class RVF_EXPORT NSKeyedArchiverDelegate {
 public:
  virtual ~NSKeyedArchiverDelegate();
  /// Answers what goes into the archive for an object: itself, another one, or absent. Asked once
  /// an object, before it is encoded for the first time and after it had its own say; later
  /// references have the first answer. Also asked for objects that are encoded conditionally, for
  /// the elements and keys of collections, and for the root; never for an absent object. What is
  /// answered is not asked about in turn.
  virtual id archiverWillEncodeObject(const Ref<NSKeyedArchiver>& archiver, const id& object);
};

/// Writes a graph of objects into a data block from which `NSKeyedUnarchiver` makes an equal one,
/// in the platform's container format: a binary property list with references, which other programs
/// can read.
///
///     const Ref<NSData> data = NSKeyedArchiver::archivedDataWithRootObject(order);
///
/// An object is written once, however many refer to it; they may refer to one another in a circle.
/// Texts, numbers, data blocks, dates, arrays, dictionaries, sets and `NSNull` can be written; so
/// can objects that answer `encodeWithCoder:`, see `NSCoder`. Before that an object may name
/// another one in its place: what it answers to `replacementObjectForCoder:`, absent included.
///
/// Raises, after which the archiver is of no more use: the unrecognized-selector exception for an
/// object that cannot be encoded; `NSInvalidArgumentException` if more than 1,000 objects lead to
/// one another in a row, a key is used twice in one object, the archive is ended while an object is
/// encoded, or anything is encoded after the end.
/// A text that is not UTF-8 raises it at the end.
///
/// Thread: one at a time; held by a `Ref`. Lifetime: keeps the objects it was given until it goes;
/// the delegate is not owned.
class RVF_EXPORT NSKeyedArchiver final : public NSCoder {
 public:
  /// An archive with this object under "root".
  static Ref<NSData> archivedDataWithRootObject(const id& object);

  NSKeyedArchiver();
  ~NSKeyedArchiver() override;

  static Class classObject();
  Class isa() const override;

  /// Absent once it is gone.
  std::shared_ptr<NSKeyedArchiverDelegate> delegate() const { return delegate_.lock(); }
  /// Not owned. It is read whenever it is asked.
  void setDelegate(std::weak_ptr<NSKeyedArchiverDelegate> delegate);

  /// Called from outside of `encodeWithCoder:`, these put a value at the top of the archive.
  void encodeObject(const id& object, std::string_view forKey) override;
  void encodeConditionalObject(const id& object, std::string_view forKey) override;
  void encodeBool(bool value, std::string_view forKey) override;
  void encodeInteger(long value, std::string_view forKey) override;
  void encodeDouble(double value, std::string_view forKey) override;

  /// Ends the archive if it has not ended yet, and answers it.
  Ref<NSData> encodedData();

 private:
  class Graph;

  std::weak_ptr<NSKeyedArchiverDelegate> delegate_;
  std::unique_ptr<Graph> graph_;
};

}  // namespace rvf
