// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/System/SystemLog.h"
#include "Platform/Text/Format.h"

namespace rvf {

/// Writes formatted lines to the system log:
///
///     const auto logger = std::make_shared<RVFLogger>();
///     logger->startLoggingUsingName("till", "local0", 0);
///     logger->setTresholdLevel(6);
///     logger->logOfLevel(6, "%d %% discount", 5);  // the log shows "5 % discount"
///
/// Levels are those of syslog, from 0, emergency, to 7, debug. The logger takes no lock: threads
/// take turns, or have a logger each.
///
/// Thread: one at a time; several loggers may be used at once. Lifetime: owns its connection,
/// closed with it; keeps no argument.
class RVF_EXPORT RVFLogger final : public NSObject {
 public:
  RVFLogger() = default;
  /// Closes the connection.
  ~RVFLogger() override;

  static Class classObject();
  Class isa() const override;

  /// The open connection, or null. The setter only stores: it closes nothing. What is stored when
  /// the logger goes, or starts anew, is closed then.
  aslclient client() const noexcept { return client_; }
  void setClient(aslclient client);

  /// Closes the open connection and opens another, as `asl_open` does with these arguments; a log
  /// that is not reachable leaves none. The threshold of the old one does not carry over.
  void startLoggingUsingName(std::string_view name, std::string_view facility,
                             std::uint32_t options, const SystemLogSockets& sockets = {});

  /// Admits this level and the more severe ones. Of `level` + 1 only the low five bits count, so -1
  /// and 31 admit nothing. Does nothing without a connection.
  void setTresholdLevel(std::int32_t level);

  /// Fills the format as `stringWithFormat` does, and raises as it does, then writes the text.
  /// False if the log did not take it, and without a connection, where nothing is formatted;
  /// a message that the threshold holds back counts as written.
  template <class... Arguments>
  bool logOfLevel(std::int32_t level, std::string_view andFormat, const Arguments&... arguments) {
    const std::array<FormatArgument, sizeof...(Arguments)> list{FormatArgument(arguments)...};
    return logFormat(level, andFormat, list);
  }

 private:
  bool logFormat(std::int32_t level, std::string_view format,
                 std::span<const FormatArgument> arguments);
  bool logPlain(std::int32_t level, std::string_view format);
  void startLogging(std::string_view name, std::string_view facility, std::uint32_t options);

  aslclient client_ = nullptr;
};

}  // namespace rvf
