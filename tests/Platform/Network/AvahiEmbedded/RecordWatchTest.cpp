// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiEmbedded/RecordWatch.h"

#include <avahi-common/error.h>
#include <avahi-core/lookup.h>
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <sys/socket.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace {

/// What stands in for the stack while a test here runs.
struct ScriptedStack {
  bool refuses = false;
  AvahiSRecordBrowserCallback callback = nullptr;
  void* userdata = nullptr;
  int freed = 0;
};

ScriptedStack* scriptedStack = nullptr;

AvahiServer* const kServer = reinterpret_cast<AvahiServer*>(std::uintptr_t{1});
AvahiSRecordBrowser* const kBrowser = reinterpret_cast<AvahiSRecordBrowser*>(std::uintptr_t{2});

template <class Function>
Function* original(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

}  // namespace

// These take the place of the library's own in this program; without a script they call those.
extern "C" {
[[gnu::visibility("default")]] AvahiSRecordBrowser* avahi_s_record_browser_new(
    AvahiServer* server, AvahiIfIndex interfaceIndex, AvahiProtocol protocol, AvahiKey* key,
    AvahiLookupFlags flags, AvahiSRecordBrowserCallback callback, void* userdata) {
  if (!scriptedStack) {
    return original<decltype(avahi_s_record_browser_new)>("avahi_s_record_browser_new")(
        server, interfaceIndex, protocol, key, flags, callback, userdata);
  }
  scriptedStack->callback = callback;
  scriptedStack->userdata = userdata;
  return scriptedStack->refuses ? nullptr : kBrowser;
}

[[gnu::visibility("default")]] void avahi_s_record_browser_free(AvahiSRecordBrowser* browser) {
  if (!scriptedStack) {
    return original<decltype(avahi_s_record_browser_free)>("avahi_s_record_browser_free")(browser);
  }
  ++scriptedStack->freed;
}

[[gnu::visibility("default")]] int avahi_server_errno(AvahiServer* server) {
  if (!scriptedStack) return original<decltype(avahi_server_errno)>("avahi_server_errno")(server);
  return AVAHI_ERR_INVALID_KEY;
}
}

namespace rvf {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RecordWatchTest : public testing::Test {
 protected:
  RecordWatchTest() { scriptedStack = &stack_; }
  ~RecordWatchTest() override { scriptedStack = nullptr; }

  RecordWatch watch() {
    RecordWatch::Events events;
    events.added = [this](const AvahiRecord& record, ServiceLink link) {
      log_.push_back("added " + textOf(record, link));
    };
    events.removed = [this](const AvahiRecord& record, ServiceLink link) {
      log_.push_back("removed " + textOf(record, link));
    };
    events.cacheExhausted = [this] { log_.push_back("exhausted"); };
    events.failed = [this](NSNetServicesError error) {
      log_.push_back("failed " + std::to_string(static_cast<int>(error)));
    };
    return RecordWatch(*kServer, "Till._till._tcp.local", AVAHI_DNS_TYPE_SRV, std::move(events));
  }
  static std::string textOf(const AvahiRecord& record, ServiceLink link) {
    EXPECT_EQ(link.family, AF_INET);
    return std::to_string(record.data.srv.port) + " on " + std::to_string(link.interfaceIndex);
  }
  void report(AvahiBrowserEvent event, AvahiRecord* record = nullptr) {
    stack_.callback(kBrowser, 2, AVAHI_PROTO_INET, event, record, AVAHI_LOOKUP_RESULT_MULTICAST,
                    stack_.userdata);
  }

  ScriptedStack stack_;
  std::vector<std::string> log_;
};

TEST_F(RecordWatchTest, HandsOnWhatComesAndGoes) {
  const auto watching = watch();
  const AvahiHandle<AvahiRecord> record(
      avahi_record_new_full("Till._till._tcp.local", AVAHI_DNS_CLASS_IN, AVAHI_DNS_TYPE_SRV, 120));
  record->data.srv.port = 4711;
  report(AVAHI_BROWSER_NEW, record.get());
  report(AVAHI_BROWSER_REMOVE, record.get());
  report(AVAHI_BROWSER_CACHE_EXHAUSTED);
  report(AVAHI_BROWSER_ALL_FOR_NOW);
  EXPECT_THAT(log_, ElementsAre("added 4711 on 2", "removed 4711 on 2", "exhausted"));
}

TEST_F(RecordWatchTest, ReportsThatItsQuestionCannotBePut) {
  stack_.refuses = true;
  { const auto watching = watch(); }
  EXPECT_THAT(log_, ElementsAre("failed -72004"));
  EXPECT_EQ(stack_.freed, 0);
}

TEST_F(RecordWatchTest, ReportsAFailureOfItsQuestion) {
  {
    const auto watching = watch();
    EXPECT_THAT(log_, IsEmpty());
    report(AVAHI_BROWSER_FAILURE);
    EXPECT_THAT(log_, ElementsAre("failed -72004"));
  }
  EXPECT_EQ(stack_.freed, 1);
}

}  // namespace
}  // namespace rvf
