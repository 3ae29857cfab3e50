// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>

#include "Platform/Values/NSData.h"
#include "Platform/Values/NSError.h"
#include "RVFoundation/Streaming/RVFStreamedDecompressor.h"
#include "RVFoundation/Streaming/RVFStreamedSAXParser.h"

namespace rvf::tool {

/// Reads a server's gzip XML answer as it arrives: every chunk is inflated and parsed at once, and
/// nothing of it is kept but the counts.
class AnswerReader final {
 public:
  AnswerReader();
  AnswerReader(const AnswerReader&) = delete;
  AnswerReader& operator=(const AnswerReader&) = delete;

  /// False, with the error, if the chunk or what came before it is no well-formed gzip XML.
  bool read(const Ref<NSData>& chunk, Ref<NSError>* error);
  /// Says that the answer has ended. False, with the error, if it is not complete.
  bool complete(Ref<NSError>* error);

  std::uint64_t bytesReceived() const noexcept { return bytesReceived_; }
  std::uint64_t bytesInflated() const noexcept { return bytesInflated_; }
  std::uint64_t elementCount() const noexcept { return elementCount_; }
  std::uint64_t productCount() const noexcept { return productCount_; }

 private:
  Ref<RVFStreamedDecompressor> decompressor_;
  Ref<RVFStreamedSAXParser> parser_;
  std::uint64_t bytesReceived_ = 0;
  std::uint64_t bytesInflated_ = 0;
  std::uint64_t elementCount_ = 0;
  std::uint64_t productCount_ = 0;
};

}  // namespace rvf::tool
