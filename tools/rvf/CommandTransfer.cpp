// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/CommandTransfer.h"

#include <curl/curl.h>

#include <array>
#include <cmath>
#include <exception>
#include <memory>

#include "Platform/Network/NSURL.h"

namespace rvf::tool {
namespace {

constexpr long kConnectTimeoutSeconds = 5;
constexpr long kOk = 200;

struct Receiver {
  CURL* curl;
  const std::function<bool(std::string_view)>& receive;
  std::exception_ptr raised;  // libcurl's frames must not be unwound
  bool stopped = false;
};

long statusOf(CURL* curl) {
  long status = 0;
  curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status);
  return status;
}

std::size_t receiveBody(char* bytes, std::size_t, std::size_t count, void* context) noexcept {
  auto& receiver = *static_cast<Receiver*>(context);
  if (statusOf(receiver.curl) != kOk) return count;  // the page of an error, not an answer
  try {
    receiver.stopped = !receiver.receive({bytes, count});
  } catch (...) {
    receiver.raised = std::current_exception();
    receiver.stopped = true;
  }
  return receiver.stopped ? 0 : count;
}

ExitCode exitCodeFor(CURLcode code) {
  switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
      return ExitCode::noHost;
    case CURLE_COULDNT_CONNECT:
      return ExitCode::unavailable;
    case CURLE_OPERATION_TIMEDOUT:
      return ExitCode::temporary;
    case CURLE_SSL_CACERT_BADFILE:
      return ExitCode::noInput;
    default:
      return ExitCode::protocol;
  }
}

using Handle = std::unique_ptr<CURL, decltype(&curl_easy_cleanup)>;
using HeaderList = std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)>;

void configure(CURL* curl, const NSURLRequest& request, const std::string& authorityFile) {
  curl_easy_setopt(curl, CURLOPT_URL, request.URL()->absoluteString().c_str());
  curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "https");
  curl_easy_setopt(curl, CURLOPT_CUSTOMREQUEST, request.HTTPMethod().c_str());
  if (const Ref<NSData> body = request.HTTPBody()) {
    curl_easy_setopt(curl, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body->length()));
    curl_easy_setopt(curl, CURLOPT_COPYPOSTFIELDS, std::string(body->characters()).c_str());
  }
  curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT, kConnectTimeoutSeconds);
  curl_easy_setopt(curl, CURLOPT_LOW_SPEED_LIMIT, 1L);
  curl_easy_setopt(curl, CURLOPT_LOW_SPEED_TIME, std::lround(request.timeoutInterval()));
  curl_easy_setopt(curl, CURLOPT_NOPROXY, "*");
  curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
  if (authorityFile.empty()) return;
  curl_easy_setopt(curl, CURLOPT_CAINFO, authorityFile.c_str());
  // The system's folder of authorities would otherwise be trusted beside the named file.
  curl_easy_setopt(curl, CURLOPT_CAPATH, nullptr);
}

/// Whether no connection came about: refused, or out of time before it stood.
bool isUnreachable(CURL* curl, CURLcode code) {
  if (code != CURLE_OPERATION_TIMEDOUT) return code == CURLE_COULDNT_CONNECT;
  curl_off_t connectedAfter = 0;
  curl_easy_getinfo(curl, CURLINFO_CONNECT_TIME_T, &connectedAfter);
  return connectedAfter == 0;
}

TransferResult resultOf(CURL* curl, CURLcode code, const char* detail) {
  if (code != CURLE_OK) {
    return {Failure{exitCodeFor(code), *detail ? detail : curl_easy_strerror(code),
                    ErrorNumber{"libcurl", code}},
            isUnreachable(curl, code)};
  }
  const long status = statusOf(curl);
  if (status == kOk) return {};
  return {Failure{ExitCode::protocol, "the server answered with status " + std::to_string(status),
                  ErrorNumber{"HTTP", status}}};
}

}  // namespace

TransferResult sendCommand(const NSURLRequest& request, const std::string& authorityFile,
                           const std::function<bool(std::string_view)>& receive) {
  const Handle curl(curl_easy_init(), &curl_easy_cleanup);
  if (!curl) return {Failure{ExitCode::software, "libcurl cannot be set up"}};
  configure(curl.get(), request, authorityFile);
  const HeaderList headers(curl_slist_append(nullptr, "Accept-Encoding: gzip"),
                           &curl_slist_free_all);
  curl_easy_setopt(curl.get(), CURLOPT_HTTPHEADER, headers.get());
  std::array<char, CURL_ERROR_SIZE> detail{};
  curl_easy_setopt(curl.get(), CURLOPT_ERRORBUFFER, detail.data());
  Receiver receiver{curl.get(), receive, nullptr};
  curl_easy_setopt(curl.get(), CURLOPT_WRITEFUNCTION, &receiveBody);
  curl_easy_setopt(curl.get(), CURLOPT_WRITEDATA, &receiver);
  const CURLcode code = curl_easy_perform(curl.get());
  if (receiver.raised) std::rethrow_exception(receiver.raised);
  if (receiver.stopped) return {Failure{ExitCode::dataError, "stopped"}};
  return resultOf(curl.get(), code, detail.data());
}

}  // namespace rvf::tool
