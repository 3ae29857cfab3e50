// SPDX-License-Identifier: Apache-2.0
//
// A shop's server for trying the library out: real HTTPS, a generated catalogue, and a DNS-SD
// registration of the type that tills look for.

#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <string>

#include "Platform/Network/NSNetService.h"
#include "Platform/Network/ServiceDiscovery.h"
#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/ServerDiscovery/RVFQMServerServiceBrowser.h"
#include "examples/storefront/Storefront.h"
#include "tools/terminal/DiscoveryOption.h"
#include "tools/terminal/ExitCode.h"
#include "tools/terminal/SignalWatch.h"

namespace {

using storefront::Catalogue;
using storefront::Certificate;
using storefront::Storefront;

// Base URLs print the port as a signed 16-bit number, so a server stays below 32768.
constexpr std::uint16_t kFirstPort = 9630;
constexpr std::uint16_t kLastPort = 9729;
constexpr std::uint16_t kHighestPort = 32767;

struct Options {
  std::string name = "Quillmarsh Demo";
  std::uint16_t port = 0;
  std::size_t products = 50000;
  std::string authorityFile;
  rvf::ServiceDiscoveryChoice backend = rvf::ServiceDiscoveryChoice::automatic;
};

/// Says on standard output when the registration stands, for people and for scripts that wait.
class Announcer final : public rvf::NSObject, public rvf::NSNetServiceDelegate {
 public:
  void netServiceDidPublish(const rvf::Ref<rvf::NSNetService>& service) override {
    std::cout << "published \"" << service->name() << "\" on port " << service->port() << std::endl;
  }
  void netServiceDidNotPublish(const rvf::Ref<rvf::NSNetService>&,
                               const rvf::Ref<rvf::NSDictionary>& errorDict) override {
    std::cerr << "storefront: cannot publish: " << errorDict->description() << std::endl;
    failed_ = true;
    rvf::NSRunLoop::mainRunLoop()->stop();
  }
  bool failed() const noexcept { return failed_; }

 private:
  bool failed_ = false;
};

rvf::Ref<rvf::NSNetService> publish(const Options& options, std::uint16_t port,
                                    const std::shared_ptr<Announcer>& announcer) {
  auto service = rvf::NSNetService::initWithDomain("", rvf::RVFQuillMarshServerServiceType,
                                                   options.name, port);
  service->setDelegate(announcer);
  service->setTXTRecordData(rvf::NSNetService::dataFromTXTRecordDictionary(
      rvf::NSDictionary::dictionaryWithEntries({{"demo", rvf::box("1")}})));
  service->publish();
  return service;
}

ExitCode writeAuthority(const Certificate& certificate, const std::string& path) {
  if (path.empty()) return ExitCode::ok;
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file << certificate.authorityPem() << std::flush;
  if (file) return ExitCode::ok;
  std::cerr << "storefront: cannot write " << path << "\n";
  return ExitCode::ioError;
}

ExitCode serve(const Options& options) {
  const SignalWatch signals({SIGINT, SIGTERM}, [](int) { rvf::NSRunLoop::mainRunLoop()->stop(); });
  const Certificate certificate;
  const Catalogue catalogue(options.products);
  if (const ExitCode code = writeAuthority(certificate, options.authorityFile);
      code != ExitCode::ok) {
    return code;
  }
  Storefront server(catalogue, certificate);
  const auto port = server.start(options.port ? options.port : kFirstPort,
                                 options.port ? options.port : kLastPort);
  if (!port) {
    std::cerr << "storefront: no port is free\n";
    return ExitCode::unavailable;
  }
  rvf::ServiceDiscovery::setChoice(options.backend);
  const auto announcer = std::make_shared<Announcer>();
  const auto service = publish(options, *port, announcer);
  rvf::NSRunLoop::mainRunLoop()->run();
  service->setDelegate({});
  service->stop();
  return announcer->failed() ? ExitCode::unavailable : ExitCode::ok;
}

ExitCode run(int argc, char** argv) {
  Options options;
  CLI::App app("A demo shop server: HTTPS, a generated catalogue, announced by DNS-SD");
  app.add_option("--name", options.name, "Name to announce")->capture_default_str();
  app.add_option("--port", options.port, "Port; 0: the first free one from 9630 on")
      ->check(CLI::Range(0, int{kHighestPort}))
      ->capture_default_str();
  app.add_option("--products", options.products, "Products in the catalogue")
      ->capture_default_str();
  app.add_option("--authority-file", options.authorityFile,
                 "Where to write the certificate authority (PEM)");
  app.add_option("--backend", options.backend, "Discovery: automatic, daemon or embedded")
      ->transform(CLI::CheckedTransformer(discoveryChoices()));
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? ExitCode::ok : ExitCode::usage;
  }
  return serve(options);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return static_cast<int>(run(argc, argv));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "storefront: %s\n", error.what());
    return static_cast<int>(ExitCode::software);
  }
}
