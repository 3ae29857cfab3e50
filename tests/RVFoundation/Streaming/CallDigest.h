// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string_view>

#include "RVFoundation/Streaming/RVFStreamedSAXParser.h"

namespace rvf::test {

/// A running digest (FNV-1a, 64 bits) of everything that a parser's handlers are told. Equal for
/// equal calls in equal order, however character data is cut into pieces.
class CallDigest final {
 public:
  explicit CallDigest(RVFStreamedSAXParser& parser);
  CallDigest(const CallDigest&) = delete;
  CallDigest& operator=(const CallDigest&) = delete;

  std::uint64_t value() const { return value_; }
  std::uint64_t elements() const { return elements_; }

 private:
  void add(std::string_view bytes);
  void addText(std::string_view bytes);

  std::uint64_t value_ = 14695981039346656037U;
  std::uint64_t elements_ = 0;
};

}  // namespace rvf::test
