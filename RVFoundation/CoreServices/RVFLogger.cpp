// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/CoreServices/RVFLogger.h"

#include <string>

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&RVFLogger::classObject);

/// The log takes its text for a format, and makes one per cent sign of two.
std::string withDoubledPercentSigns(std::string_view text) {
  std::string doubled;
  doubled.reserve(text.size());
  for (const char byte : text) {
    doubled += byte;
    if (byte == '%') doubled += '%';
  }
  return doubled;
}

}  // namespace

RVFLogger::~RVFLogger() {
  asl_close(client_);
}

Class RVFLogger::classObject() {
  static const Class kClass =
      ClassBuilder<RVFLogger>("RVFLogger", NSObject::classObject())
          .property("client", "T^{SystemLogClient=},N,V_client")
          .ivar<&RVFLogger::client_>("_client")
          .method<&RVFLogger::client>("client")
          .method<&RVFLogger::setClient>("setClient:")
          .method<&RVFLogger::startLogging>("startLoggingUsingName:facility:options:")
          .method<&RVFLogger::setTresholdLevel>("setTresholdLevel:")
          .method<&RVFLogger::logPlain>("logOfLevel:andFormat:")
          .registered();
  return kClass;
}

Class RVFLogger::isa() const {
  return classObject();
}

void RVFLogger::setClient(aslclient client) {
  announceChange(*this, "client", [&] { client_ = client; });
}

void RVFLogger::startLoggingUsingName(std::string_view name, std::string_view facility,
                                      std::uint32_t options, const SystemLogSockets& sockets) {
  asl_close(client_);
  client_ = nullptr;
  setClient(asl_open(name, facility, options, sockets));
}

void RVFLogger::startLogging(std::string_view name, std::string_view facility,
                             std::uint32_t options) {
  startLoggingUsingName(name, facility, options);
}

void RVFLogger::setTresholdLevel(std::int32_t level) {
  if (!client_) return;
  const std::uint32_t shift = (static_cast<std::uint32_t>(level) + 1) % 32;
  asl_set_filter(client_, static_cast<int>((std::uint32_t{1} << shift) - 1));
}

bool RVFLogger::logFormat(std::int32_t level, std::string_view format,
                          std::span<const FormatArgument> arguments) {
  if (!client_) return false;
  // A description that is asked for its text may log, or start anew, through this very logger.
  const std::string text = withDoubledPercentSigns(formatText(format, arguments));
  return asl_log(client_, level, text) == 0;
}

bool RVFLogger::logPlain(std::int32_t level, std::string_view format) {
  return logFormat(level, format, {});
}

}  // namespace rvf
