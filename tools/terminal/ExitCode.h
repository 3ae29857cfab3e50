// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sysexits.h>

#include <string>

/// The exit codes of the programs here, those of sysexits.h. What each says is in `kExitCodes`.
enum class ExitCode : int {
  ok = EX_OK,
  usage = EX_USAGE,
  dataError = EX_DATAERR,
  noInput = EX_NOINPUT,
  noHost = EX_NOHOST,
  unavailable = EX_UNAVAILABLE,
  software = EX_SOFTWARE,
  cannotCreate = EX_CANTCREAT,
  ioError = EX_IOERR,
  temporary = EX_TEMPFAIL,
  protocol = EX_PROTOCOL,
};

/// An exit code with its name in sysexits.h and what it says, for people.
struct ExitCodeMeaning {
  ExitCode code;
  const char* name;
  const char* meaning;
};

/// Every exit code, in ascending order.
inline constexpr ExitCodeMeaning kExitCodes[] = {
    {ExitCode::ok, "EX_OK", "done"},
    {ExitCode::usage, "EX_USAGE", "the command line is wrong"},
    {ExitCode::dataError, "EX_DATAERR",
     "an answer, swipe, date, value, text, record or property list cannot be read, or there is no "
     "such class"},
    {ExitCode::noInput, "EX_NOINPUT", "a named file or standard input cannot be read"},
    {ExitCode::noHost, "EX_NOHOST", "there is no such server, or its name does not resolve"},
    {ExitCode::unavailable, "EX_UNAVAILABLE",
     "discovery, the server or the system log does not work"},
    {ExitCode::software, "EX_SOFTWARE", "an error of this program, or of the system beneath it"},
    {ExitCode::cannotCreate, "EX_CANTCREAT", "the list of servers could not be saved"},
    {ExitCode::ioError, "EX_IOERR", "output could not be written"},
    {ExitCode::temporary, "EX_TEMPFAIL", "out of time, or interrupted; try again"},
    {ExitCode::protocol, "EX_PROTOCOL", "TLS or HTTP failed: certificate, status"},
};

/// The table as a program's help shows it, one line a code.
std::string exitCodeText();
