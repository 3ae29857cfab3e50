// SPDX-License-Identifier: Apache-2.0
#include "Platform/Values/NSError.h"

#include <functional>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSCopying.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSError::classObject);

}  // namespace

NSError::NSError(std::string_view domain, long code, const Ref<NSDictionary>& userInfo)
    : domain_(domain),
      code_(code),
      userInfo_(std::static_pointer_cast<NSDictionary>(copyOfObject(userInfo))) {}

Ref<NSError> NSError::errorWithDomain(std::string_view domain, long code,
                                      const Ref<NSDictionary>& userInfo) {
  return std::make_shared<NSError>(domain, code, userInfo);
}

Class NSError::classObject() {
  static const Class kClass =
      ClassBuilder<NSError>("NSError", NSObject::classObject())
          .property("domain", "T@\"NSString\",R,C")
          .property("code", "Tq,R")
          .property("userInfo", "T@\"NSDictionary\",R,C")
          .method<&NSError::domain>("domain")
          .method<&NSError::code>("code")
          .method<&NSError::userInfo>("userInfo")
          .property("localizedDescription", "T@\"NSString\",R,C")
          .property("localizedRecoverySuggestion", "T@\"NSString\",R,C")
          .method<&NSError::localizedDescription>("localizedDescription")
          .method<&NSError::localizedRecoverySuggestion>("localizedRecoverySuggestion")
          .method("copy", immutableCopyImplementation())
          .conformsTo("NSCopying")
          .registered();
  return kClass;
}

Class NSError::isa() const {
  return classObject();
}

std::string NSError::localizedDescription() const {
  if (userInfo_) {
    if (auto text = userInfo_->textForKey(NSLocalizedDescriptionKey)) return *text;
  }
  return "The operation couldn’t be completed. (" + domain_ + " error " + std::to_string(code_) +
         ".)";
}

std::optional<std::string> NSError::localizedRecoverySuggestion() const {
  return userInfo_ ? userInfo_->textForKey(NSLocalizedRecoverySuggestionErrorKey) : std::nullopt;
}

Ref<NSError> NSError::underlyingError() const {
  if (!userInfo_) return nullptr;
  return std::dynamic_pointer_cast<NSError>(userInfo_->objectForKey(NSUnderlyingErrorKey));
}

bool NSError::isEqual(const NSObject* other) const {
  const auto* error = dynamic_cast<const NSError*>(other);
  return error && domain_ == error->domain_ && code_ == error->code_ &&
         objectsAreEqual(userInfo_, error->userInfo_);
}

std::size_t NSError::hash() const {
  return std::hash<std::string>()(domain_) ^ std::hash<long>()(code_);
}

std::string NSError::description() const {
  return "Error Domain=" + domain_ + " Code=" + std::to_string(code_) + " \"" +
         localizedDescription() + "\"";
}

}  // namespace rvf
