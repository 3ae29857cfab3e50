// SPDX-License-Identifier: Apache-2.0
#include "examples/host-loops/GLibHost.h"

#include "Platform/RunLoop/NSRunLoop.h"

using rvf::NSRunLoop;

namespace {

/// GLib asks before every wait, so whatever was added since the last turn is noticed.
gboolean prepare(GSource* /*source*/, gint* timeout) {
  const auto wait = NSRunLoop::currentRunLoop()->nextTimeout();
  *timeout = wait ? static_cast<gint>(wait->count()) : -1;
  return wait && wait->count() == 0 ? TRUE : FALSE;
}

gboolean dispatch(GSource* /*source*/, GSourceFunc /*callback*/, gpointer /*data*/) {
  NSRunLoop::currentRunLoop()->turn();
  return G_SOURCE_CONTINUE;
}

/// Without a check of its own, a source is dispatched when its descriptor is ready; a time that has
/// come is found by the next `prepare`.
GSourceFuncs functions = {prepare, nullptr, dispatch, nullptr, nullptr, nullptr};

}  // namespace

GLibHost::GLibHost(GMainContext* context) : source_(g_source_new(&functions, sizeof(GSource))) {
  g_source_add_unix_fd(source_, NSRunLoop::currentRunLoop()->pollableDescriptor(), G_IO_IN);
  // A callback may iterate the context, and then the loop shall go on, too.
  g_source_set_can_recurse(source_, TRUE);
  g_source_attach(source_, context);
}

GLibHost::~GLibHost() {
  g_source_destroy(source_);
  g_source_unref(source_);
}
