// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace rvf::test {

enum class Wrapper { kZlib, kGzip };

/// `content` compressed by zlib itself.
std::string compressedBytes(std::string_view content, Wrapper wrapper = Wrapper::kGzip);

/// A zlib stream that cannot be read without the preset dictionary it was made with.
std::string bytesWithPresetDictionary(std::string_view content);

/// Bytes that do not compress, the same in every run.
std::string noise(std::size_t length, unsigned seed = 1);

}  // namespace rvf::test
