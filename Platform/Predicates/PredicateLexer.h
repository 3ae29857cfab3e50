// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "Platform/Runtime/NSObject.h"
#include "Platform/Text/Format.h"

namespace rvf {

/// What a format text consists of.
struct PredicateToken {
  enum class Kind {
    end,
    sign,      ///< "==", "(", …
    word,      ///< a word of the language, or a key path
    keyPath,   ///< a key path from an argument, whatever its words
    variable,  ///< without the "$"
    value,     ///< a text in quotes, a number, an argument
  };

  Kind kind = Kind::end;
  std::size_t start = 0;  ///< byte offset
  std::string_view text;  ///< of a sign, word or variable
  std::string name;       ///< of a key path
  id value;               ///< of a value; absent for nil
};

/// Reads a format text from left to right and fills its arguments in. Every problem raises a
/// `PredicateFormatException`.
class PredicateLexer final {
 public:
  PredicateLexer(std::string_view format, std::span<const FormatArgument> arguments)
      : format_(format), arguments_(arguments) {}

  /// The next token; of kind `end` at the end, however often.
  PredicateToken next();
  /// The sum of the options in brackets here; 0 if there are none.
  unsigned takeOptions();

  [[noreturn]] void raise(std::size_t start, std::string_view problem) const;

 private:
  bool isAtEnd() const noexcept { return at_ >= format_.size(); }
  char peek(std::size_t offset = 0) const noexcept;
  void skipBlanks() noexcept;
  std::string_view since(std::size_t start) const noexcept {
    return format_.substr(start, at_ - start);
  }

  bool startsNumber() const noexcept;
  std::size_t nameLength() const noexcept;
  PredicateToken readQuoted();
  void readEscape(std::string& text);
  PredicateToken readNumber();
  void skipDigits() noexcept;
  PredicateToken readWord();
  PredicateToken readVariable();
  PredicateToken readSign();
  PredicateToken readArgument();
  id argumentFor(char conversion, const FormatArgument& argument, std::size_t start) const;
  std::string keyPathFor(const FormatArgument& argument, std::size_t start) const;

  std::string_view format_;
  std::size_t at_ = 0;
  std::span<const FormatArgument> arguments_;
  std::size_t nextArgument_ = 0;
};

}  // namespace rvf
