// SPDX-License-Identifier: Apache-2.0
#include "Platform/System/SystemLog.h"

#include <errno.h>

#include <memory>

#include "Platform/System/SystemLogClient.h"

namespace rvf {
namespace {

std::string given(std::string_view text, std::string_view otherwise) {
  return std::string(text.empty() ? otherwise : text);
}

}  // namespace

aslclient asl_open(std::string_view name, std::string_view facility, std::uint32_t options,
                   const SystemLogSockets& sockets) {
  auto client = std::make_unique<SystemLogClient>(given(name, ::program_invocation_short_name),
                                                  given(facility, "user"), options, sockets);
  return client->isReachable() ? client.release() : nullptr;
}

void asl_close(aslclient client) noexcept {
  const std::unique_ptr<SystemLogClient> closed(client);
}

int asl_set_filter(aslclient client, int mask) {
  return client ? client->setFilter(mask) : 0;
}

int asl_log(aslclient client, int level, std::string_view format) {
  return client && client->log(level, format) ? 0 : -1;
}

}  // namespace rvf
