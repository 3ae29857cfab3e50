// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "Platform/Export.h"

/// The system log: lines with a severity, under the name of their sender.
///
///     const aslclient client = asl_open("till", "local0", 0);
///     asl_set_filter(client, 0x7f);  // levels 0 to 6
///     asl_log(client, 6, "drawer opened");
///     asl_close(client);
///
/// A client writes to the first of these that is reachable: journald's own socket
/// (https://systemd.io/JOURNAL_NATIVE_PROTOCOL), the syslog socket (RFC 3164), standard error if it
/// was asked for. It holds no state of the process, so clients do not disturb each other nor the
/// program's own use of `syslog(3)`.
///
/// A client is used by one thread at a time.
namespace rvf {

class SystemLogClient;
/// A connection to the system log; null if there is none. Owned by whoever opened it, and invalid
/// once it was closed.
using aslclient = SystemLogClient*;

/// Options of `asl_open`.
enum SystemLogOptions : std::uint32_t {
  /// Copies every message, whatever the mask, to standard error, and makes that the log if there
  /// is no other.
  ASL_OPT_STDERR = 0x00000001,
};

/// Where the servers of the log listen.
///
/// Thread: any, a plain value. Lifetime: owns its paths.
struct SystemLogSockets {
  std::string journal = "/run/systemd/journal/socket";
  std::string syslog = "/dev/log";
};

/// Opens a client. An empty name stands for the process's, an empty facility for "user".
/// A facility that syslog does not know goes to the journal as the field FACILITY, and to the
/// syslog socket as "user"; so does "kern", which belongs to the kernel. Bits of `options` without
/// a meaning are ignored. Levels 0 to 5 are admitted.
///
/// Null if no log is reachable.
RVF_EXPORT aslclient asl_open(std::string_view name, std::string_view facility,
                              std::uint32_t options, const SystemLogSockets& sockets = {});

/// Ends a client. Does nothing with null.
RVF_EXPORT void asl_close(aslclient client) noexcept;

/// Admits the levels whose bits are set, 1 << level, and answers the mask before.
RVF_EXPORT int asl_set_filter(aslclient client, int mask);

/// Writes a message at a level: 0, emergency, to 7, debug; others count as the nearest. `format` is
/// a format without arguments: "%%" stands for "%", and everything else for itself.
///
/// 0 if the log took the message or the mask held it back. A log server that was restarted is found
/// again; one that takes nothing for a second is given up for this message. A message longer than
/// the syslog socket takes (about 200 KiB) fails; the journal takes any. A copy on standard error
/// counts only while no server listens.
RVF_EXPORT int asl_log(aslclient client, int level, std::string_view format);

}  // namespace rvf
