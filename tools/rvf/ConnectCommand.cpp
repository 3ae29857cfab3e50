// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/ConnectCommand.h"

#include <chrono>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "Platform/Network/NSURL.h"
#include "RVFoundation/ServerDiscovery/NSURL-RVFExtensions.h"
#include "RVFoundation/ServerDiscovery/NSURLRequest-RVFExtensions.h"
#include "tools/rvf/CommandLine.h"
#include "tools/rvf/CommandTransfer.h"
#include "tools/rvf/ConnectionReport.h"
#include "tools/rvf/OptionKinds.h"
#include "tools/rvf/ServerFinder.h"
#include "tools/terminal/ExitCode.h"
#include "tools/terminal/ProgressLine.h"

namespace rvf::tool {
namespace {

struct ConnectOptions {
  std::string name;                          ///< the server to find; empty: the first that is found
  std::optional<std::string> staticAddress;  ///< a hand-entered address instead of browsing
  std::string command = "catalogue";
  std::string authorityFile;
  double timeoutSeconds = 10;
  bool asJson = false;
};

Failure failureToRead(const Ref<NSError>& error) {
  if (!error) return {ExitCode::dataError, "the answer cannot be read"};
  return {
      ExitCode::dataError,
      error->domain() + " " + std::to_string(error->code()) + ": " + error->localizedDescription(),
      numberOf(*error)};
}

/// One answer from one address of a server.
class Connection final {
 public:
  Connection(const ConnectOptions& options, const Ref<NSURL>& base)
      : options_(options), url_(relativeURLWithFormat(base, "%@", options.command)) {}

  TransferResult run() {
    if (!url_) return {Failure{ExitCode::usage, "\"" + options_.command + "\" makes no URL"}};
    if (!url_->port()) {
      return {Failure{ExitCode::unavailable,
                      "the server's port is above 32767, which base URLs cannot carry"}};
    }
    const auto request = NSURLRequest_RVFExtensions::RVF_postCommandWithURL(url_->absoluteURL());
    Ref<NSError> error;
    TransferResult result =
        sendCommand(*request, options_.authorityFile, [this, &error](std::string_view bytes) {
          const bool isFine = answer_.read(NSData::dataWithBytes(bytes), &error);
          progress_.show(std::to_string(answer_.productCount()) + " products, " +
                         std::to_string(answer_.bytesReceived()) + " bytes");
          return isFine;
        });
    progress_.clear();
    const bool isUnreadable = result.failure ? result.failure->exitCode == ExitCode::dataError
                                             : !answer_.complete(&error);
    if (isUnreadable) result.failure = failureToRead(error);
    return result;
  }

  std::string url() const { return url_->absoluteString(); }
  const AnswerReader& answer() const noexcept { return answer_; }

 private:
  const ConnectOptions& options_;
  Ref<NSURL> url_;
  AnswerReader answer_;
  ProgressLine progress_;
};

/// Tries the server's addresses in order until one can be reached.
ExitCode connectTo(const Finding& finding, const ConnectOptions& options) {
  TransferResult result{Failure{ExitCode::unavailable, "the server has no address"}};
  for (const Ref<NSData>& address : finding.addresses) {
    const auto start = std::chrono::steady_clock::now();
    Connection connection(options, NSURL_RVFExtensions::RVF_CURLURLWithAddressData(address));
    result = connection.run();
    if (!result.failure) {
      const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
      print({finding, connection.url(), connection.answer(), time.count()}, options.asJson);
      return std::cout.flush() ? ExitCode::ok : ExitCode::ioError;
    }
    if (!result.isUnreachable) break;
  }
  return report(*result.failure, options.asJson);
}

ExitCode connectCommand(const ConnectOptions& options) {
  const FindResult found =
      options.staticAddress
          ? findStaticServer(RVFStaticServer::staticServerWithAddress(*options.staticAddress),
                             options.timeoutSeconds)
          : findServer(options.name, options.timeoutSeconds);
  return found.finding ? connectTo(*found.finding, options) : report(found.failure, options.asJson);
}

}  // namespace

void addConnectCommand(CommandLine& line) {
  const auto options = std::make_shared<ConnectOptions>();
  CLI::App& command =
      line.addCommand("connect", "Find a server, send it a command and read its answer",
                      [options] { return connectCommand(*options); });
  auto* name = command.add_option("NAME", options->name, "The server's name; default: the first");
  command
      .add_option("--static", options->staticAddress, "A hand-entered address instead of browsing")
      ->type_name("ADDRESS")
      ->excludes(name);
  command.add_option("--command", options->command, "The command's path")
      ->type_name("PATH")
      ->capture_default_str();
  command
      .add_option("--ca-file", options->authorityFile,
                  "Certificate authority to verify against (PEM); default: the system's")
      ->type_name("FILE");
  addTimeoutOption(command, options->timeoutSeconds, "Seconds to find the server");
  addJsonFlag(command, options->asJson);
  command.footer(
      "The server's certificate is always verified. Its addresses are tried in their order until\n"
      "one can be reached. The answer is inflated and parsed as it arrives, and only counted.");
}

}  // namespace rvf::tool
