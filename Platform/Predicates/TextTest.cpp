// SPDX-License-Identifier: Apache-2.0
#include "Platform/Predicates/TextTest.h"

#include <cstring>
#include <utility>

#include "Platform/Predicates/RegularExpression.h"
#include "Platform/Predicates/WildcardPattern.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Text/Text.h"

namespace rvf {
namespace {

/// Unlike `find`, in linear time for every pair of texts.
bool contains(std::string_view text, std::string_view part) noexcept {
  if (part.empty()) return true;
  if (text.size() < part.size()) return false;
  return memmem(text.data(), text.size(), part.data(), part.size()) != nullptr;
}

bool comparesFolded(NSPredicateOperatorType type, std::string_view left, std::string_view right) {
  switch (type) {
    case NSLessThanPredicateOperatorType:
      return compareUtf16(left, right) < 0;
    case NSLessThanOrEqualToPredicateOperatorType:
      return compareUtf16(left, right) <= 0;
    case NSGreaterThanPredicateOperatorType:
      return compareUtf16(left, right) > 0;
    case NSGreaterThanOrEqualToPredicateOperatorType:
      return compareUtf16(left, right) >= 0;
    case NSNotEqualToPredicateOperatorType:
      return left != right;
    case NSBeginsWithPredicateOperatorType:
      return left.starts_with(right);
    case NSEndsWithPredicateOperatorType:
      return left.ends_with(right);
    case NSContainsPredicateOperatorType:
      return contains(left, right);
    default:
      return left == right;
  }
}

class FoldingTest final : public TextTest {
 public:
  FoldingTest(NSPredicateOperatorType type, TextFolding folding, std::string_view right)
      : type_(type), folding_(folding), right_(foldedText(right, folding)) {}

  bool holdsFor(std::string_view left) const override {
    return comparesFolded(type_, FoldedText(left, folding_).view(), right_);
  }

 private:
  NSPredicateOperatorType type_;
  TextFolding folding_;
  std::string right_;
};

class WildcardTest final : public TextTest {
 public:
  WildcardTest(TextFolding folding, std::string_view pattern) : pattern_(pattern, folding) {}

  bool holdsFor(std::string_view left) const override { return pattern_.matches(left); }

 private:
  WildcardPattern pattern_;
};

class RegularExpressionTest final : public TextTest {
 public:
  RegularExpressionTest(TextFolding folding, std::string_view pattern)
      : expression_(pattern, folding) {}

  bool holdsFor(std::string_view left) const override { return expression_.matches(left); }

 private:
  RegularExpression expression_;
};

}  // namespace

TextFolding foldingOf(unsigned options) noexcept {
  if ((options & NSNormalizedPredicateOption) != 0) return {};
  return {(options & NSCaseInsensitivePredicateOption) != 0,
          (options & NSDiacriticInsensitivePredicateOption) != 0};
}

bool isTextOperator(NSPredicateOperatorType type) noexcept {
  return type >= NSMatchesPredicateOperatorType && type <= NSEndsWithPredicateOperatorType;
}

bool comparesTexts(NSPredicateOperatorType type, TextFolding folding, std::string_view left,
                   std::string_view right) {
  if (type == NSLikePredicateOperatorType || type == NSMatchesPredicateOperatorType)
    return TextTest::create(type, folding, right)->holdsFor(left);
  return comparesFolded(type, FoldedText(left, folding).view(), FoldedText(right, folding).view());
}

TextTest::~TextTest() = default;

std::unique_ptr<const TextTest> TextTest::create(NSPredicateOperatorType type, TextFolding folding,
                                                 std::string_view right) {
  if (type == NSLikePredicateOperatorType) return std::make_unique<WildcardTest>(folding, right);
  if (type == NSMatchesPredicateOperatorType)
    return std::make_unique<RegularExpressionTest>(folding, right);
  return std::make_unique<FoldingTest>(type, folding, right);
}

PreparedTextTest::PreparedTextTest(NSPredicateOperatorType type, TextFolding folding,
                                   std::string right)
    : type_(type), folding_(folding), right_(std::move(right)) {}

bool PreparedTextTest::holdsFor(std::string_view left) const {
  std::call_once(isMade_, [this] {
    try {
      test_ = TextTest::create(type_, folding_, right_);
    } catch (const NSException&) {
      refusal_ = std::current_exception();
    }
  });
  if (refusal_) std::rethrow_exception(refusal_);
  return test_->holdsFor(left);
}

}  // namespace rvf
