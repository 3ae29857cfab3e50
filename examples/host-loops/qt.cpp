// SPDX-License-Identifier: Apache-2.0
#include <QGuiApplication>
#include <QTimer>
#include <iostream>

#include "examples/host-loops/Exchange.h"
#include "examples/host-loops/QtHost.h"

// A program whose main loop is Qt's.
int main(int argc, char** argv) {
  const QGuiApplication application(argc, argv);
  const QtHost host;
  const auto exchange = Exchange::start(&QGuiApplication::quit);
  QTimer::singleShot(10, [] { std::cout << "host" << std::endl; });
  return QGuiApplication::exec();
}
