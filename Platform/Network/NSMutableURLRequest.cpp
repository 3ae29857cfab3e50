// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/NSMutableURLRequest.h"

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSMutableURLRequest::classObject);

}  // namespace

Ref<NSMutableURLRequest> NSMutableURLRequest::requestWithURL(Ref<NSURL> url) {
  return std::make_shared<NSMutableURLRequest>(std::move(url));
}

Class NSMutableURLRequest::classObject() {
  static const Class kClass =
      ClassBuilder<NSMutableURLRequest>("NSMutableURLRequest", NSURLRequest::classObject())
          .property("URL", "T@\"NSURL\",C,N")
          .property("HTTPMethod", "T@\"NSString\",C,N")
          .property("HTTPBody", "T@\"NSData\",C,N")
          .property("timeoutInterval", "Td,N")
          .method<&NSMutableURLRequest::setURL>("setURL:")
          .method<&NSMutableURLRequest::setHTTPMethod>("setHTTPMethod:")
          .method<&NSMutableURLRequest::setHTTPBody>("setHTTPBody:")
          .method<&NSMutableURLRequest::setTimeoutInterval>("setTimeoutInterval:")
          .registered();
  return kClass;
}

Class NSMutableURLRequest::isa() const {
  return classObject();
}

void NSMutableURLRequest::setURL(Ref<NSURL> url) {
  announceChange(*this, "URL", [&] { url_.swap(url); });
}

void NSMutableURLRequest::setHTTPMethod(std::string method) {
  announceChange(*this, "HTTPMethod", [&] { method_.swap(method); });
}

void NSMutableURLRequest::setHTTPBody(Ref<NSData> body) {
  announceChange(*this, "HTTPBody", [&] { body_.swap(body); });
}

void NSMutableURLRequest::setTimeoutInterval(double seconds) {
  announceChange(*this, "timeoutInterval", [&] { timeoutInterval_ = seconds; });
}

}  // namespace rvf
