// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <glib.h>

/// Turns this thread's run loop inside a GLib main context, as one more of its sources.
class GLibHost final {
 public:
  /// `context` is the one that this thread iterates; null: the default one.
  explicit GLibHost(GMainContext* context = nullptr);
  GLibHost(const GLibHost&) = delete;
  GLibHost& operator=(const GLibHost&) = delete;
  ~GLibHost();

 private:
  GSource* source_;
};
