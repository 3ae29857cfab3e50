// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "Platform/Runtime/Ref.h"
#include "Platform/Values/NSDictionary.h"

/// The wire form of DNS-SD TXT records (RFC 6763, 6): strings of up to 255 bytes, each after its
/// length byte, of the form "key", "key=" or "key=value".
namespace rvf {

/// Decodes a record. The first of several equal keys counts; empty strings and strings without a
/// key are passed over; a last string that is cut short is dropped, what came before it stays.
Ref<NSDictionary> decodedTXTRecord(std::span<const std::byte> record);

/// Encodes texts, data and `NSNull` (a key without "=") by order of the keys; an empty dictionary
/// gives one zero byte. Absent for an entry longer than 255 bytes, a record longer than 65535, a
/// key that is no text, empty or holds "=", and for values of other classes.
std::optional<std::vector<std::byte>> encodedTXTRecord(const NSDictionary& entries);

}  // namespace rvf
