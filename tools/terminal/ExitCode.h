// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sysexits.h>

/// The exit codes of the programs here, those of sysexits.h.
enum class ExitCode : int {
  ok = EX_OK,              ///< done
  usage = EX_USAGE,        ///< 64: the command line is wrong
  dataError = EX_DATAERR,  ///< 65: an answer, swipe, date, value, text or property list cannot be
                           ///< read; no such class
  noInput = EX_NOINPUT,    ///< 66: a named file or standard input cannot be read
  noHost = EX_NOHOST,      ///< 68: no such server, or its name does not resolve
  unavailable = EX_UNAVAILABLE,  ///< 69: discovery, the server or the system log does not work
  software = EX_SOFTWARE,        ///< 70: an error of this program
  cannotCreate = EX_CANTCREAT,   ///< 73: the list of servers could not be saved
  ioError = EX_IOERR,            ///< 74: output could not be written
  temporary = EX_TEMPFAIL,       ///< 75: out of time; try again
  protocol = EX_PROTOCOL,        ///< 76: TLS or HTTP failed: certificate, status
};
