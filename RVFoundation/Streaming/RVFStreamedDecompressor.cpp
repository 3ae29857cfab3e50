// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Streaming/RVFStreamedDecompressor.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <new>
#include <span>
#include <string>
#include <utility>

#include "Platform/Locale/NSBundle.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/CoreServices/RVFErrors.h"
#include "RVFoundation/CoreServices/RVFLibraryBundle.h"
#include "RVFoundation/Streaming/ZlibStream.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&RVFStreamedDecompressor::classObject);

constexpr std::size_t kLongestRoom = std::numeric_limits<uInt>::max();
/// Chunks hold about as much as the one before; with some more room, one call finds the end.
constexpr double kSpareRoom = 1.25;

void report(Ref<NSError>* error, RVFErrorCode code) {
  reportError(error, [code] { return NSError::errorWithDomain(RVFErrorDomain, code); });
}

Ref<NSError> inconsistentStreamStateError() {
  const Ref<NSBundle> bundle = RVFLibraryBundle();
  const std::string description =
      bundle->localizedStringForKey("An error occurred while receiving data.");
  const std::string suggestion =
      bundle->localizedStringForKey("Please check your network connection and try again.");
  return NSError::errorWithDomain(
      RVFErrorDomain, RVFInconsistentStreamStateError,
      NSDictionary::dictionaryWithEntries({
          {NSLocalizedDescriptionKey, NSString::stringWithString(description)},
          {NSLocalizedRecoverySuggestionErrorKey, NSString::stringWithString(suggestion)},
      }));
}

/// The content of one chunk while it grows. zlib writes straight into it, and gets all the room
/// that there is: the less often it is called, the less of its window it copies. The memory is
/// neither cleared nor, mostly, copied.
class Accumulator final {
 public:
  explicit Accumulator(std::size_t capacity)
      : capacity_(capacity), buffer_(std::make_unique_for_overwrite<std::byte[]>(capacity)) {}

  std::size_t length() const { return length_; }

  /// Where the next bytes go, at least `count` of them.
  std::span<std::byte> roomFor(std::size_t count) {
    if (capacity_ - length_ < count) moveTo(2 * length_ + count);
    return {buffer_.get() + length_, capacity_ - length_};
  }
  void append(std::size_t count) { length_ += count; }

  /// The content; holds at most twice the memory that it needs.
  Ref<NSData> data() && {
    if (length_ < capacity_ / 2) moveTo(length_);
    return std::make_shared<NSData>(std::move(buffer_), length_);
  }

 private:
  void moveTo(std::size_t capacity) {
    auto buffer = std::make_unique_for_overwrite<std::byte[]>(capacity);
    std::copy_n(buffer_.get(), length_, buffer.get());
    buffer_ = std::move(buffer);
    capacity_ = capacity;
  }

  std::size_t capacity_;
  std::size_t length_ = 0;
  std::unique_ptr<std::byte[]> buffer_;
};

}  // namespace

struct RVFStreamedDecompressor::Stream {
  z_stream record = {};
  double expansion = 1;  // room to offer for each byte of the next chunk

  /// Answers zlib's last result, and the content unless that is a failure.
  int inflateChunk(const NSData& chunk, Ref<NSData>& content) try {
    setInput(record, chunk);
    const std::size_t leastRoom = chunk.length();
    const auto expected = static_cast<std::size_t>(static_cast<double>(leastRoom) * expansion);
    Accumulator accumulator(leastRoom + expected);
    int result = Z_OK;
    do {
      result = inflateInto(accumulator, leastRoom);
      if (isFailure(result)) return result;
    } while (record.avail_out == 0);
    expansion =
        kSpareRoom * static_cast<double>(accumulator.length()) / static_cast<double>(leastRoom);
    content = std::move(accumulator).data();
    return result;
  } catch (const std::bad_alloc&) {
    return Z_MEM_ERROR;
  }

 private:
  static bool isFailure(int result) {
    return result == Z_MEM_ERROR || result == Z_DATA_ERROR || result == Z_NEED_DICT ||
           result == Z_STREAM_ERROR;
  }
  int inflateInto(Accumulator& accumulator, std::size_t leastRoom) {
    const std::span<std::byte> room = accumulator.roomFor(leastRoom);
    const auto available = static_cast<uInt>(std::min(room.size(), kLongestRoom));
    record.next_out = reinterpret_cast<Bytef*>(room.data());
    record.avail_out = available;
    const int result = inflate(&record, Z_NO_FLUSH);
    accumulator.append(available - record.avail_out);
    return result;
  }
};

RVFStreamedDecompressor::RVFStreamedDecompressor() : strm_(std::make_unique<Stream>()) {}

RVFStreamedDecompressor::~RVFStreamedDecompressor() {
  if (!decompressionComplete_) inflateEnd(&strm_->record);
}

Ref<RVFStreamedDecompressor> RVFStreamedDecompressor::init() {
  Ref<RVFStreamedDecompressor> decompressor(new RVFStreamedDecompressor);
  z_stream& record = decompressor->strm_->record;
  if (inflateInit2_(&record, kDetectedWrapper, kZlibInterface, sizeof record) != Z_OK) {
    // uncovered: only without memory
    return nullptr;
  }
  return decompressor;
}

Class RVFStreamedDecompressor::classObject() {
  static const Class kClass =
      ClassBuilder<RVFStreamedDecompressor>("RVFStreamedDecompressor", NSObject::classObject())
          .ivar("strm", "^{z_stream_s}")
          .ivar<&RVFStreamedDecompressor::decompressionStarted_>("decompressionStarted")
          .ivar<&RVFStreamedDecompressor::decompressionComplete_>("decompressionComplete")
          .method<&RVFStreamedDecompressor::decompressChunk>("decompressChunk:error:")
          .method<&RVFStreamedDecompressor::completeDecompressionUsingError>(
              "completeDecompressionUsingError:")
          .registered();
  return kClass;
}

Class RVFStreamedDecompressor::isa() const {
  return classObject();
}

Ref<NSData> RVFStreamedDecompressor::decompressChunk(const Ref<NSData>& chunk,
                                                     Ref<NSError>* error) {
  if (!chunk || chunk->empty()) {
    report(error, RVFEmptyChunkError);
    return chunk;
  }
  decompressionStarted_ = true;
  Ref<NSData> content;
  const int result = strm_->inflateChunk(*chunk, content);
  if (content && result != Z_STREAM_END) return content;
  inflateEnd(&strm_->record);
  if (content) {
    decompressionComplete_ = true;
  } else if (result == Z_STREAM_ERROR) {
    reportError(error, &inconsistentStreamStateError);
  } else {
    report(error, RVFCorruptStreamError);
  }
  return content;
}

bool RVFStreamedDecompressor::completeDecompressionUsingError(Ref<NSError>* error) {
  if (!decompressionStarted_) {
    report(error, RVFNoChunkError);
    return false;
  }
  if (!decompressionComplete_) report(error, RVFIncompleteStreamError);
  return decompressionComplete_;
}

}  // namespace rvf
