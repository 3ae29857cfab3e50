// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/PlatformUtilities/RVFHardwareInfo.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/System/NSProcessInfo.h"
#include "Platform/System/SystemControl.h"
#include "Platform/Text/Text.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&RVFHardwareInfo::classObject);

constexpr std::string_view kUnknownModel = "Unknown";
constexpr std::array kGreatestSocketBuffer = {1, 32, 1};
constexpr std::uint32_t kAssumedSendSpace = 786432;

}  // namespace

Class RVFHardwareInfo::classObject() {
  static const Class kClass =
      ClassBuilder<RVFHardwareInfo>("RVFHardwareInfo", NSObject::classObject())
          .property("hardwareModel", "T@\"NSString\",R,N")
          .property("ramInMegabytes", "T@\"NSNumber\",R,N")
          .property("tcpSendSpace", "T@\"NSNumber\",R,N")
          .method<&RVFHardwareInfo::hardwareModel>("hardwareModel")
          .method<&RVFHardwareInfo::ramInMegabytes>("ramInMegabytes")
          .method<&RVFHardwareInfo::tcpSendSpace>("tcpSendSpace")
          .registered();
  return kClass;
}

Class RVFHardwareInfo::isa() const {
  return classObject();
}

std::string RVFHardwareInfo::hardwareModel() const {
  std::array<char, 128> buffer{};
  std::size_t length = buffer.size();
  if (sysctlbyname("hw.model", buffer.data(), &length) != 0) return std::string(kUnknownModel);
  const std::string_view model(buffer.data());
  return std::string(isValidUtf8(model) ? model : kUnknownModel);
}

Ref<NSNumber> RVFHardwareInfo::ramInMegabytes() const {
  return box(NSProcessInfo::processInfo()->physicalMemory() >> 20);
}

Ref<NSNumber> RVFHardwareInfo::tcpSendSpace() const {
  std::uint32_t limit = 0;
  std::size_t length = sizeof limit;
  if (sysctl(kGreatestSocketBuffer, &limit, &length) == -1) return box(kAssumedSendSpace);
  return box(limit >> 3);
}

}  // namespace rvf
