// SPDX-License-Identifier: Apache-2.0

// The properties of the C object system: declared ones that are set and read by name.

#include <benchmark/benchmark.h>
#include <glib-object.h>

#include "benchmarks/DynamicProperties.h"

namespace {

enum : guint { kCount = 1 };

struct Record {
  GObject parent;
  glong count;
};
struct RecordClass {
  GObjectClass parent;
};

void setProperty(GObject* object, guint, const GValue* value, GParamSpec*) {
  reinterpret_cast<Record*>(object)->count = g_value_get_long(value);
}

void getProperty(GObject* object, guint, GValue* value, GParamSpec*) {
  g_value_set_long(value, reinterpret_cast<Record*>(object)->count);
}

void initializeClass(gpointer aClass, gpointer) {
  auto* const objectClass = static_cast<GObjectClass*>(aClass);
  objectClass->set_property = setProperty;
  objectClass->get_property = getProperty;
  g_object_class_install_property(
      objectClass, kCount,
      g_param_spec_long("count", "Count", "A number", G_MINLONG, G_MAXLONG, 0,
                        static_cast<GParamFlags>(G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS)));
}

GObject* newRecord() {
  static const GType kType =
      g_type_register_static_simple(G_TYPE_OBJECT, "BenchmarkGObjectRecord", sizeof(RecordClass),
                                    initializeClass, sizeof(Record), nullptr, G_TYPE_FLAG_NONE);
  return static_cast<GObject*>(g_object_new(kType, nullptr));
}

/// The way with lists of arguments.
long setAndGetByList(GObject* record, long value) {
  g_object_set(record, "count", value, nullptr);
  long result = 0;
  g_object_get(record, "count", &result, nullptr);
  return result;
}

/// The way of one property a call.
long setAndGetByValue(GObject* record, long value) {
  GValue boxed = G_VALUE_INIT;
  g_value_init(&boxed, G_TYPE_LONG);
  g_value_set_long(&boxed, value);
  g_object_set_property(record, "count", &boxed);
  g_value_set_long(&boxed, 0);
  g_object_get_property(record, "count", &boxed);
  const long result = g_value_get_long(&boxed);
  g_value_unset(&boxed);
  return result;
}

template <long (*SetAndGet)(GObject*, long)>
void setAndGet(benchmark::State& state) {
  GObject* const record = newRecord();
  rvf::measurePair(state, [&](long value) { return SetAndGet(record, value); });
  g_object_unref(record);
}
BENCHMARK(setAndGet<&setAndGetByList>)
    ->Name("set and get a dynamic property/peer: GObject, lists of arguments");
BENCHMARK(setAndGet<&setAndGetByValue>)->Name("set and get a dynamic property/peer: GObject");

}  // namespace
