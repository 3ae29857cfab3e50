// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/NSAssertionHandler.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSException.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSAssertionHandler::classObject);

Ref<NSAssertionHandler>& threadHandler() {
  thread_local Ref<NSAssertionHandler> handler;
  return handler;
}

void logLine(const std::string& line) {
  std::fprintf(stderr, "%s\n", line.c_str());
}

std::string place(std::string_view file, int line) {
  return std::string(file) + ":" + std::to_string(line);
}

}  // namespace

Ref<NSAssertionHandler> NSAssertionHandler::currentHandler() {
  Ref<NSAssertionHandler>& handler = threadHandler();
  if (!handler) handler = std::make_shared<NSAssertionHandler>();
  return handler;
}

void NSAssertionHandler::setCurrentHandler(Ref<NSAssertionHandler> handler) {
  threadHandler() = std::move(handler);
}

Class NSAssertionHandler::classObject() {
  static const Class kClass =
      ClassBuilder<NSAssertionHandler>("NSAssertionHandler", NSObject::classObject()).registered();
  return kClass;
}

Class NSAssertionHandler::isa() const {
  return classObject();
}

void NSAssertionHandler::handleFailureInMethod(SEL selector, const NSObject* object,
                                               std::string_view file, int line,
                                               std::string_view description) {
  logLine("*** Assertion failure in -[" + std::string(class_getName(object_getClass(object))) +
          " " + NSStringFromSelector(selector) + "], " + place(file, line) + ": " +
          std::string(description));
  NSException::raise(NSInternalInconsistencyException, description);
}

void NSAssertionHandler::handleFailureInFunction(std::string_view function, std::string_view file,
                                                 int line, std::string_view description) {
  logLine("*** Assertion failure in " + std::string(function) + ", " + place(file, line) + ": " +
          std::string(description));
  NSException::raise(NSInternalInconsistencyException, description);
}

void failAssertion(std::string_view function, std::string_view file, int line,
                   std::string_view condition) noexcept {
  std::fprintf(stderr, "Assertion failed: (%.*s), function %.*s, file %.*s, line %d.\n",
               static_cast<int>(condition.size()), condition.data(),
               static_cast<int>(function.size()), function.data(), static_cast<int>(file.size()),
               file.data(), line);
  std::abort();
}

}  // namespace rvf
