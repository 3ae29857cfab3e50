// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Text/SecretText.h"

namespace rvf {

/// What a payment service needs to decrypt the swipe of an encrypting card reader. The texts are
/// carried as they stand, never interpreted, decrypted or checked.
///
/// All are absent at first. They are wiped from memory when they are replaced and when the record
/// is destroyed; a text that was got is valid until then, and a setter keeps a copy.
///
/// Thread: one at a time. Lifetime: owns its texts and wipes them; what was got goes with them.
class RVF_EXPORT RVFEncryptedTrackData final : public NSObject {
 public:
  static Class classObject();
  Class isa() const override;

  /// The encrypted track data.
  std::optional<std::string_view> trackData() const noexcept { return trackData_.view(); }
  void setTrackData(std::optional<std::string_view> trackData);
  /// A further data block of the reader.
  std::optional<std::string_view> dataBlock() const noexcept { return dataBlock_.view(); }
  void setDataBlock(std::optional<std::string_view> dataBlock);
  /// The reader's status block.
  std::optional<std::string_view> statusBlock() const noexcept { return statusBlock_.view(); }
  void setStatusBlock(std::optional<std::string_view> statusBlock);
  /// The serial number of the reader's encryption key.
  std::optional<std::string_view> keySerial() const noexcept { return keySerial_.view(); }
  void setKeySerial(std::optional<std::string_view> keySerial);

 private:
  SecretText trackData_;
  SecretText dataBlock_;
  SecretText statusBlock_;
  SecretText keySerial_;
};

}  // namespace rvf
