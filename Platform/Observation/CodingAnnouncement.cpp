// SPDX-License-Identifier: Apache-2.0
#include "Platform/Observation/CodingAnnouncement.h"

namespace rvf {
namespace {

thread_local const CodingAnnouncement* innermost = nullptr;

}  // namespace

CodingAnnouncement::CodingAnnouncement(const NSObject& object, std::string_view key) noexcept
    : object_(object), key_(key), enclosing_(innermost) {
  innermost = this;
}

CodingAnnouncement::~CodingAnnouncement() {
  innermost = enclosing_;
}

bool CodingAnnouncement::covers(const NSObject& object, std::string_view key) noexcept {
  for (const CodingAnnouncement* mark = innermost; mark; mark = mark->enclosing_) {
    if (&mark->object_ == &object && mark->key_ == key) return true;
  }
  return false;
}

CodingAnnouncement::Suspension::Suspension() noexcept : suspended_(innermost) {
  innermost = nullptr;
}

CodingAnnouncement::Suspension::~Suspension() {
  innermost = suspended_;
}

}  // namespace rvf
