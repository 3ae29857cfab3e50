// SPDX-License-Identifier: Apache-2.0
#include <glib.h>

#include <iostream>

#include "examples/host-loops/Exchange.h"
#include "examples/host-loops/GLibHost.h"

// A program whose main loop is GLib's, as in a GTK application.
int main() {
  GMainLoop* const loop = g_main_loop_new(nullptr, FALSE);
  {
    const GLibHost host;
    const auto exchange = Exchange::start([loop] { g_main_loop_quit(loop); });
    const auto tick = [](gpointer) -> gboolean {
      std::cout << "host" << std::endl;
      return G_SOURCE_REMOVE;
    };
    g_timeout_add(10, tick, nullptr);
    g_main_loop_run(loop);
  }
  g_main_loop_unref(loop);
}
