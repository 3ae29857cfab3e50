// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/NSAssertionHandler.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassReceiver.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSException.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSAssertionHandler::classObject);

// Destructors of other thread-local objects may still report assertions when the handler is gone.
constinit thread_local bool handlerIsGone = false;

struct ThreadHandler {
  Ref<NSAssertionHandler> handler;

  ThreadHandler() = default;
  ThreadHandler(const ThreadHandler&) = delete;
  ThreadHandler& operator=(const ThreadHandler&) = delete;
  ~ThreadHandler() { handlerIsGone = true; }
};

ThreadHandler* threadHandler() {
  if (handlerIsGone) return nullptr;
  thread_local ThreadHandler own;
  return &own;
}

void logLine(const std::string& line) {
  std::fprintf(stderr, "%s\n", line.c_str());
}

std::string methodText(SEL selector, const NSObject* object) {
  const auto* const ofClass = dynamic_cast<const ClassReceiver*>(object);
  const Class receiver = ofClass ? ofClass->receivingClass() : object_getClass(object);
  return (ofClass ? "+[" : "-[") + std::string(class_getName(receiver)) + " " +
         NSStringFromSelector(selector) + "]";
}

std::string place(std::string_view file, int line) {
  return std::string(file) + ":" + std::to_string(line);
}

}  // namespace

Ref<NSAssertionHandler> NSAssertionHandler::currentHandler() {
  ThreadHandler* const own = threadHandler();
  if (own && own->handler) return own->handler;
  auto handler = std::make_shared<NSAssertionHandler>();
  if (own) own->handler = handler;
  return handler;
}

void NSAssertionHandler::setCurrentHandler(Ref<NSAssertionHandler> handler) {
  if (ThreadHandler* const own = threadHandler()) own->handler.swap(handler);
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
  logLine("*** Assertion failure in " + methodText(selector, object) + ", " + place(file, line) +
          ": " + std::string(description));
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
