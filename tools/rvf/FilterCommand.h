// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace rvf::tool {

class CommandLine;

/// "rvf filter": copies those JSON objects from standard input to standard output that the
/// predicate holds for, as an array if they come as one, else one a line, as they were written. An
/// object over several lines is read in an array only. The words of a text each make a comparison
/// of their own.
void addFilterCommand(CommandLine& line);

}  // namespace rvf::tool
