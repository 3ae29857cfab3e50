// SPDX-License-Identifier: Apache-2.0
#include "Platform/Predicates/PredicateParser.h"

#include <string>
#include <utility>
#include <vector>

#include "Platform/Predicates/NSComparisonPredicate.h"
#include "Platform/Predicates/NSCompoundPredicate.h"
#include "Platform/Predicates/OperatorNames.h"
#include "Platform/Predicates/PredicateLexer.h"
#include "Platform/Predicates/PredicateNesting.h"
#include "Platform/Values/NSNumber.h"

namespace rvf {
namespace {

using Kind = PredicateToken::Kind;

class PredicateParser final {
 public:
  PredicateParser(std::string_view format, std::span<const FormatArgument> arguments)
      : lexer_(format, arguments), token_(lexer_.next()) {}

  Ref<NSPredicate> parse() {
    Ref<NSPredicate> predicate = parseAlternatives();
    if (token_.kind != Kind::end) fail("the predicate should end here");
    return predicate;
  }

 private:
  /// Keeps count of the open parentheses, NOTs and braces.
  class Level final {
   public:
    explicit Level(PredicateParser& parser) : depth_(parser.depth_) {
      if (++depth_ > kDeepestFormat) parser.fail("the predicate nests deeper than 250 levels");
    }
    Level(const Level&) = delete;
    Level& operator=(const Level&) = delete;
    ~Level() { --depth_; }

   private:
    std::size_t& depth_;
  };

  [[noreturn]] void fail(std::string_view problem) const { lexer_.raise(token_.start, problem); }

  bool isAtSign(std::string_view sign) const noexcept {
    return token_.kind == Kind::sign && token_.text == sign;
  }
  bool isAtWord(std::string_view word) const noexcept {
    return token_.kind == Kind::word && isWord(token_.text, word);
  }
  PredicateToken take() { return std::exchange(token_, lexer_.next()); }
  bool takeSign(std::string_view sign) {
    if (!isAtSign(sign)) return false;
    take();
    return true;
  }
  bool takeWord(std::string_view word) {
    if (!isAtWord(word)) return false;
    take();
    return true;
  }
  void requireSign(std::string_view sign, std::string_view problem) {
    if (!takeSign(sign)) fail(problem);
  }

  Ref<NSPredicate> parseAlternatives() {
    return parseChain(NSOrPredicateType, "OR", "||", &PredicateParser::parseConditions);
  }
  Ref<NSPredicate> parseConditions() {
    return parseChain(NSAndPredicateType, "AND", "&&", &PredicateParser::parseCondition);
  }

  /// One part is itself, more are one compound.
  Ref<NSPredicate> parseChain(NSCompoundPredicateType type, std::string_view word,
                              std::string_view sign, Ref<NSPredicate> (PredicateParser::*part)()) {
    Ref<NSPredicate> first = (this->*part)();
    if (!isAtWord(word) && !isAtSign(sign)) return first;
    std::vector<id> parts{std::move(first)};
    while (takeWord(word) || takeSign(sign))
      parts.push_back((this->*part)());
    return NSCompoundPredicate::initWithType(type, NSArray::arrayWithObjects(std::move(parts)));
  }

  Ref<NSPredicate> parseCondition() {
    if (isAtSign("!") || isAtWord("NOT")) {
      const Level level(*this);
      take();
      return NSCompoundPredicate::notPredicateWithSubpredicate(parseCondition());
    }
    if (isAtSign("(")) {
      const Level level(*this);
      take();
      Ref<NSPredicate> inner = parseAlternatives();
      requireSign(")", "a closing parenthesis is missing");
      return inner;
    }
    if (takeWord("TRUEPREDICATE")) return NSPredicate::predicateWithValue(true);
    if (takeWord("FALSEPREDICATE")) return NSPredicate::predicateWithValue(false);
    return parseComparison();
  }

  Ref<NSPredicate> parseComparison() {
    const bool isNone = takeWord("NONE");
    NSComparisonPredicateModifier modifier =
        isNone ? NSAnyPredicateModifier : NSDirectPredicateModifier;
    if (!isNone && takeWord("ALL")) {
      modifier = NSAllPredicateModifier;
    } else if (!isNone && (takeWord("ANY") || takeWord("SOME"))) {
      modifier = NSAnyPredicateModifier;
    }
    const Ref<NSExpression> left = parseOperand();
    unsigned options = 0;
    const NSPredicateOperatorType type = parseOperator(options);
    const Ref<NSExpression> right = parseOperand();
    const auto comparison =
        NSComparisonPredicate::initWithLeftExpression(left, right, modifier, type, options);
    if (isNone) return NSCompoundPredicate::notPredicateWithSubpredicate(comparison);
    return comparison;
  }

  NSPredicateOperatorType parseOperator(unsigned& options) {
    const bool mayBe = token_.kind == Kind::sign || token_.kind == Kind::word;
    const auto type = mayBe ? operatorNamed(token_.text) : std::nullopt;
    if (!type) fail("a comparison is missing");
    options = lexer_.takeOptions();
    take();
    return *type;
  }

  Ref<NSExpression> parseOperand() {
    switch (token_.kind) {
      case Kind::value:
        return NSExpression::expressionForConstantValue(take().value);
      case Kind::variable:
        return NSExpression::expressionForVariable(take().text);
      case Kind::keyPath:
        return NSExpression::expressionForKeyPath(take().name);
      case Kind::word:
        return parseWord();
      default:
        if (isAtSign("{")) return parseAggregate();
        fail("a value is missing");
    }
  }

  Ref<NSExpression> parseWord() {
    if (takeWord("SELF")) return NSExpression::expressionForEvaluatedObject();
    if (takeWord("TRUE") || takeWord("YES")) return constant(box(true));
    if (takeWord("FALSE") || takeWord("NO")) return constant(box(false));
    if (takeWord("NIL") || takeWord("NULL")) return constant(nullptr);
    if (isReservedWord(token_.text)) fail("this word is no value");
    std::string_view path = take().text;
    if (startsWithSelf(path)) path.remove_prefix(kSelfPrefix.size());
    return NSExpression::expressionForKeyPath(path);
  }

  static Ref<NSExpression> constant(const id& value) {
    return NSExpression::expressionForConstantValue(value);
  }

  Ref<NSExpression> parseAggregate() {
    const Level level(*this);
    take();
    std::vector<id> elements;
    if (!isAtSign("}")) {
      do {
        elements.push_back(parseOperand());
      } while (takeSign(","));
    }
    requireSign("}", "a closing brace is missing");
    return NSExpression::expressionForAggregate(NSArray::arrayWithObjects(std::move(elements)));
  }

  PredicateLexer lexer_;
  PredicateToken token_;
  std::size_t depth_ = 0;
};

}  // namespace

Ref<NSPredicate> parsedPredicate(std::string_view format,
                                 std::span<const FormatArgument> arguments) {
  return PredicateParser(format, arguments).parse();
}

}  // namespace rvf
