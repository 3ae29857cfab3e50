// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Platform/Export.h"

/// What this machine is called.
namespace rvf {

/// The name that people know this machine by: the pretty name of machine-info(5), else the first
/// label of the host name, else "localhost". Read anew on every call, because both can change.
RVF_EXPORT std::string computerName();

/// The first label of the host name, reduced to letters, digits and hyphens, so that it can stand
/// in a DNS name; "localhost" if nothing is left of it.
RVF_EXPORT std::string hostLabel();

/// The value of `PRETTY_HOSTNAME` in the text of a machine-info(5) file, unquoted; absent if it
/// has none or an empty one. Of several the last counts, as it does for a shell.
RVF_EXPORT std::optional<std::string> prettyHostName(std::string_view machineInfo);

}  // namespace rvf
