// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Values/NSData.h"
#include "Platform/Values/NSError.h"

namespace rvf {

/// Inflates an answer chunk by chunk while it arrives, so that what is decompressed can be parsed
/// before the whole answer is in. A zlib or a gzip wrapper (RFC 1950, RFC 1952) is detected from
/// the first bytes.
///
///     const auto decompressor = RVFStreamedDecompressor::init();
///     // for each chunk, in the order of arrival:
///     const auto data = decompressor->decompressChunk(chunk, &error);
///     if (!data || !parser->parseChunk(data, &error)) ...
///     // when the transfer has ended:
///     if (!decompressor->completeDecompressionUsingError(&error)) ...
///
/// Memory follows the length of the chunk and how far it expands (deflate: at most 1,032 times),
/// not the length of the answer. Serves one answer.
///
/// Thread: one at a time. Lifetime: one answer; what is decompressed belongs to the caller and may
/// outlive it.
class RVF_EXPORT RVFStreamedDecompressor final : public NSObject {
 public:
  /// A new decompressor; absent if zlib cannot start.
  [[nodiscard]] static Ref<RVFStreamedDecompressor> init();
  ~RVFStreamedDecompressor() override;

  static Class classObject();
  Class isa() const override;

  /// The content that `chunk` adds, which may be empty; absent on failure, after which the answer
  /// is lost. Errors, in `RVFErrorDomain`:
  /// - `RVFEmptyChunkError`: the chunk is empty. The result is that very chunk, and nothing has
  ///   changed.
  /// - `RVFCorruptStreamError`: corrupt data, a preset dictionary is needed, or no memory.
  /// - `RVFInconsistentStreamStateError`: fed on after a failure or after the stream's end.
  ///
  /// Bytes of the chunk behind the stream's end are ignored.
  Ref<NSData> decompressChunk(const Ref<NSData>& chunk, Ref<NSError>* error = nullptr);

  /// Whether the stream has been seen to its end. Otherwise false, with `RVFNoChunkError` before
  /// the first chunk that is not empty, else `RVFIncompleteStreamError`.
  bool completeDecompressionUsingError(Ref<NSError>* error = nullptr);

 private:
  struct Stream;

  RVFStreamedDecompressor();

  std::unique_ptr<Stream> strm_;
  bool decompressionStarted_ = false;
  bool decompressionComplete_ = false;
};

}  // namespace rvf
