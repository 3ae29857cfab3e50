// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace rvf {

/// A keyed archive is a binary property list:
///
///     {"$version": 100000, "$archiver": "NSKeyedArchiver",
///      "$top": {"root": reference 1, …}, "$objects": ["$null", …]}
///
/// Objects stand in "$objects" and are referred to by their position there; the one at 0 stands for
/// absent. Texts, numbers and data blocks stand there themselves. Any other object is a dictionary
/// of its values by key, objects by reference, with its class under "$class": a reference to
/// {"$classname": name, "$classes": [name, its superclass's, …]}. A key that begins with "$" has
/// one more in front.
inline constexpr std::string_view kArchiveVersionKey = "$version";
inline constexpr std::string_view kArchiveArchiverKey = "$archiver";
inline constexpr std::string_view kArchiveTopKey = "$top";
inline constexpr std::string_view kArchiveObjectsKey = "$objects";
inline constexpr std::string_view kArchiveClassKey = "$class";
inline constexpr std::string_view kArchiveClassNameKey = "$classname";
inline constexpr std::string_view kArchiveClassesKey = "$classes";
inline constexpr std::string_view kArchiveNull = "$null";
inline constexpr std::string_view kArchiver = "NSKeyedArchiver";
inline constexpr long kArchiveVersion = 100'000;

/// What collections and dates have under their keys.
inline constexpr std::string_view kArchivedKeysKey = "NS.keys";
inline constexpr std::string_view kArchivedObjectsKey = "NS.objects";
inline constexpr std::string_view kArchivedTimeKey = "NS.time";

/// How many objects may lead to one another in a row: coding them takes stack for each.
inline constexpr std::size_t kDeepestArchive = 1'000;

inline std::string archiveKey(std::string_view key) {
  return key.starts_with('$') ? "$" + std::string(key) : std::string(key);
}

}  // namespace rvf
