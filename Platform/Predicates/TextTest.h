// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <exception>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "Platform/Predicates/NSComparisonPredicate.h"
#include "Platform/Predicates/TextFolding.h"

namespace rvf {

/// How the options ask texts to be folded.
TextFolding foldingOf(unsigned options) noexcept;

/// Whether the operator compares texts with texts alone.
bool isTextOperator(NSPredicateOperatorType type) noexcept;

/// Whether an equality, an order or a text operator holds for two texts. Raises
/// `NSInvalidArgumentException` if `right` is a malformed regular expression for MATCHES.
bool comparesTexts(NSPredicateOperatorType type, TextFolding folding, std::string_view left,
                   std::string_view right);

/// The right side of a comparison of texts, ready to be asked about left ones. Immutable.
class TextTest {
 public:
  TextTest() = default;
  TextTest(const TextTest&) = delete;
  TextTest& operator=(const TextTest&) = delete;
  virtual ~TextTest();

  virtual bool holdsFor(std::string_view left) const = 0;

  /// For the operators of `comparesTexts`. Raises as it does.
  static std::unique_ptr<const TextTest> create(NSPredicateOperatorType type, TextFolding folding,
                                                std::string_view right);
};

/// A test that is made when it is first needed, once for all threads.
class PreparedTextTest final {
 public:
  PreparedTextTest(NSPredicateOperatorType type, TextFolding folding, std::string right);

  bool holdsFor(std::string_view left) const;

 private:
  NSPredicateOperatorType type_;
  TextFolding folding_;
  std::string right_;
  mutable std::once_flag isMade_;
  mutable std::exception_ptr refusal_;
  mutable std::unique_ptr<const TextTest> test_;
};

}  // namespace rvf
