// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

namespace rvf {

/// The domain of this library's own errors, codes of `RVFErrorCode`.
inline constexpr std::string_view RVFErrorDomain = "RVFErrorDomain";
/// The domain of XML parsing errors, codes of `RVFLIBXMLErrorCode`.
inline constexpr std::string_view RVFLIBXMLErrorDomain = "LIBXMLErrorDomain";

/// Every code that occurs in `RVFErrorDomain`.
enum RVFErrorCode : long {
  RVFExpiryDateFormatError = 303,         ///< expiry date text in none of the accepted forms
  RVFExpiryMonthOutOfRangeError = 304,    ///< expiry month out of range
  RVFExpiryYearOutOfRangeError = 305,     ///< expiry year out of range
  RVFEmptyChunkError = 306,               ///< an empty chunk was handed to the decompressor
  RVFCorruptStreamError = 307,            ///< corrupt data, preset dictionary, or no memory
  RVFNoChunkError = 308,                  ///< decompression completed without a single chunk
  RVFIncompleteStreamError = 309,         ///< completed before the end of the stream
  RVFInconsistentStreamStateError = 310,  ///< the decompressor's stream state is inconsistent
};

/// Every code that occurs in `RVFLIBXMLErrorDomain`.
enum RVFLIBXMLErrorCode : long {
  RVFLIBXMLParserError = 1,   ///< the parser's own error is attached as the underlying one
  RVFLIBXMLStoppedError = 2,  ///< a handler asked to stop
};

}  // namespace rvf
