// SPDX-License-Identifier: Apache-2.0
#include "examples/host-loops/QtHost.h"

#include <QAbstractEventDispatcher>

#include "Platform/RunLoop/NSRunLoop.h"

using rvf::NSRunLoop;

QtHost::QtHost(QObject* parent)
    : QObject(parent),
      notifier_(NSRunLoop::currentRunLoop()->pollableDescriptor(), QSocketNotifier::Read) {
  timer_.setSingleShot(true);
  timer_.setTimerType(Qt::PreciseTimer);
  connect(&notifier_, &QSocketNotifier::activated, this, &QtHost::turn);
  connect(&timer_, &QTimer::timeout, this, &QtHost::turn);
  connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
          &QtHost::prepareToWait);
}

/// Before every wait, so whatever was added since the last turn is noticed.
void QtHost::prepareToWait() {
  const auto wait = NSRunLoop::currentRunLoop()->nextTimeout();
  if (wait)
    timer_.start(*wait);
  else
    timer_.stop();
}

void QtHost::turn() {
  NSRunLoop::currentRunLoop()->turn();
}
