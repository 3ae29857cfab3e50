// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

/// Turns this thread's run loop inside the thread's Qt event loop. Made after the application.
class QtHost final : public QObject {
 public:
  explicit QtHost(QObject* parent = nullptr);

 private:
  void prepareToWait();
  static void turn();

  QSocketNotifier notifier_;
  QTimer timer_;
};
