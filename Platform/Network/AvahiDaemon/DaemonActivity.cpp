// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiDaemon/DaemonActivity.h"

namespace rvf {

DaemonActivity::DaemonActivity() : daemon_(AvahiDaemon::forCurrentThread()) {}

DaemonActivity::~DaemonActivity() = default;

void DaemonActivity::start() {
  if (!isAskable()) return failLater(NSNetServicesError::badArgument);
  daemon_->addActivity(weak_from_this());
  daemonChanged();
}

void DaemonActivity::end() {
  if (isEnded()) return;
  drop();
  daemon_.reset();
}

void DaemonActivity::fail(NSNetServicesError error) {
  end();
  reportFailure(error);
}

void DaemonActivity::failLater(NSNetServicesError error) {
  NSRunLoop::currentRunLoop()->performBlock(whileAlive([this, error] { fail(error); }));
}

bool DaemonActivity::canWork(DaemonState state) const {
  return state != DaemonState::absent;
}

void DaemonActivity::interrupted() {}

void DaemonActivity::daemonChanged() {
  if (isEnded()) return;
  if (isWorking_ && (!canWork(daemon_->state()) || generation_ != daemon_->generation())) {
    isWorking_ = false;
    drop();
    interrupted();
  }
  if (isEnded() || isWorking_ || !canWork(daemon_->state())) return;
  isWorking_ = true;
  generation_ = daemon_->generation();
  begin();
}

}  // namespace rvf
