// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/NSURLRequest.h"

#include <utility>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSURLRequest::classObject);

constexpr double kDefaultTimeoutSeconds = 60;

}  // namespace

NSURLRequest::NSURLRequest(Ref<NSURL> url)
    : url_(std::move(url)), method_("GET"), timeoutInterval_(kDefaultTimeoutSeconds) {}

Ref<NSURLRequest> NSURLRequest::requestWithURL(Ref<NSURL> url) {
  return std::make_shared<NSURLRequest>(std::move(url));
}

Class NSURLRequest::classObject() {
  static const Class kClass = ClassBuilder<NSURLRequest>("NSURLRequest", NSObject::classObject())
                                  .property("URL", "T@\"NSURL\",R,C,N")
                                  .property("HTTPMethod", "T@\"NSString\",R,C,N")
                                  .property("HTTPBody", "T@\"NSData\",R,C,N")
                                  .property("timeoutInterval", "Td,R,N")
                                  .method<&NSURLRequest::URL>("URL")
                                  .method<&NSURLRequest::HTTPMethod>("HTTPMethod")
                                  .method<&NSURLRequest::HTTPBody>("HTTPBody")
                                  .method<&NSURLRequest::timeoutInterval>("timeoutInterval")
                                  .registered();
  return kClass;
}

Class NSURLRequest::isa() const {
  return classObject();
}

bool NSURLRequest::isEqual(const NSObject* other) const {
  const auto* request = dynamic_cast<const NSURLRequest*>(other);
  return request && objectsAreEqual(url_, request->url_) && method_ == request->method_ &&
         objectsAreEqual(body_, request->body_) && timeoutInterval_ == request->timeoutInterval_;
}

std::size_t NSURLRequest::hash() const {
  return url_ ? url_->hash() : 0;
}

}  // namespace rvf
