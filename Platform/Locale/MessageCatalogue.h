// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <locale>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Locale/NSLocale.h"

namespace rvf {

/// The translations of one string table for one locale: a gettext catalogue (text domain = table)
/// in UTF-8, FOLDER/LOCALE/LC_MESSAGES/TABLE.mo, read whole on construction. "de_AT" is looked for
/// before "de", either in each folder in turn; the first one counts. Immutable, so safe to share
/// between threads.
class MessageCatalogue final {
 public:
  /// No catalogue, or one that cannot be read, is one without entries.
  MessageCatalogue(const std::vector<std::string>& folders, std::string_view table,
                   const NSLocale& locale);

  /// The translation; absent if there is no entry or an empty one.
  std::optional<std::string> textForKey(std::string_view key) const;

 private:
  std::locale messages_;  ///< carries the reader; never made the global one
};

}  // namespace rvf
