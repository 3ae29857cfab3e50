// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Values/NSData.h"

/// Whole blocks of bytes: text, gzip compression, scrambling. Nothing here reports why it failed;
/// for answers that arrive in chunks, and for errors, see `RVFStreamedDecompressor`.
///
/// Every operation answers absent for an absent block, leaves its block unchanged, and may be
/// called on any thread.

namespace rvf {

/// The bytes read as UTF-8, strictly; absent if they are not valid UTF-8.
RVF_EXPORT std::optional<std::string> RVF_stringUsingUTF8Encoding(const Ref<NSData>& data);

/// The block compressed with a gzip wrapper (RFC 1952) at zlib's default level; an empty block is
/// returned itself. Absent if zlib cannot start. Only the low 32 bits of the length count.
RVF_EXPORT Ref<NSData> RVF_deflate(const Ref<NSData>& data);

/// The content of a block with a zlib or gzip wrapper (RFC 1950, RFC 1952), which is detected; an
/// empty block is returned itself. Absent for corrupt and for truncated input, never a part of the
/// content. What follows the end of the compressed stream is ignored. Only the low 32 bits of the
/// length count.
RVF_EXPORT Ref<NSData> RVF_inflate(const Ref<NSData>& data);

/// A new block with every byte combined (exclusive or) with the seed's UTF-8 bytes in turn. Keeps
/// casual eyes away, no more: this is no encryption. An empty seed for a block that is not empty
/// ends the process.
RVF_EXPORT Ref<NSData> RVF_encryptWithSeed(const Ref<NSData>& data, std::string_view seed);

/// Undoes `RVF_encryptWithSeed` with the same seed. The scrambling is its own inverse.
RVF_EXPORT Ref<NSData> RVF_decryptWithSeed(const Ref<NSData>& data, std::string_view seed);

}  // namespace rvf
