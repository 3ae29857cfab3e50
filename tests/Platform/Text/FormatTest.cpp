// SPDX-License-Identifier: Apache-2.0
#include "Platform/Text/Format.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cmath>
#include <cstdio>
#include <limits>

#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "tests/Platform/Text/TextGenerators.h"

namespace rvf {
namespace {

using namespace std::string_literals;

/// What raises: the reason of the `NSInvalidArgumentException`, or "no exception".
template <class... Arguments>
std::string refusal(std::string_view format, const Arguments&... arguments) {
  try {
    stringWithFormat(format, arguments...);
  } catch (const NSException& exception) {
    return exception.name() == NSInvalidArgumentException ? exception.reason() : exception.what();
  }
  return "no exception";
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
/// The C library's answer in the "C" locale, which no test program leaves.
template <class Argument>
std::string printed(const std::string& format, Argument argument) {
  const int size = std::snprintf(nullptr, 0, format.c_str(), argument);
  std::string text(static_cast<std::size_t>(size) + 1, '\0');
  std::snprintf(text.data(), text.size(), format.c_str(), argument);
  text.pop_back();
  return text;
}
#pragma GCC diagnostic pop

TEST(Format, CopiesWhatIsNoConversion) {
  EXPECT_EQ(stringWithFormat(""), "");
  EXPECT_EQ(stringWithFormat("text, ü, \xFF"), "text, ü, \xFF");
  EXPECT_EQ(stringWithFormat("a\0b"s), "a\0b"s);
  EXPECT_EQ(stringWithFormat("100%%"), "100%");
  EXPECT_EQ(stringWithFormat("%%%%@"), "%%@");
}

TEST(Format, PrintsObjectsByTheirDescription) {
  EXPECT_EQ(stringWithFormat("%@!", box("Hello")), "Hello!");
  EXPECT_EQ(stringWithFormat("%@ %@", box(3), box(1.5)), "3 1.5");
}

TEST(Format, PrintsAbsentObjectsAndTexts) {
  EXPECT_EQ(stringWithFormat("?%@", nullptr), "?(null)");
  EXPECT_EQ(stringWithFormat("?%@", id()), "?(null)");
  EXPECT_EQ(stringWithFormat("?%@", std::optional<std::string>()), "?(null)");
  EXPECT_EQ(stringWithFormat("?%s", static_cast<const char*>(nullptr)), "?(null)");
}

TEST(Format, ObjectConversionTakesEveryKind) {
  EXPECT_EQ(stringWithFormat("%@ %@ %@", "a", "b"s, std::string_view("c")), "a b c");
  EXPECT_EQ(stringWithFormat("%@ %@ %@", -1, 18446744073709551615U, true),
            "-1 18446744073709551615 1");
  EXPECT_EQ(stringWithFormat("%@ %@", 0.1, 1e300), "0.1 1e+300");
}

TEST(Format, PositionsReorderArguments) {
  EXPECT_EQ(stringWithFormat("%2$@ %1$@", "a", "b"), "b a");
  EXPECT_EQ(stringWithFormat("%2$@:%1$02d:%2$@", 7, "b"), "b:07:b");
  EXPECT_EQ(stringWithFormat("%3$@%@%@", "a", "b", "c"), "cab");
}

TEST(Format, PrintsIntegersInTheTypeThatIsNamed) {
  EXPECT_EQ(stringWithFormat("%d %i %u", -5, 7, -1), "-5 7 4294967295");
  EXPECT_EQ(stringWithFormat("%ld %lld %lu %llu", -1L, -1LL, -1L, -1LL),
            "-1 -1 18446744073709551615 18446744073709551615");
  EXPECT_EQ(stringWithFormat("%d %ld", 1L << 32, 1L << 32), "0 4294967296");
  EXPECT_EQ(stringWithFormat("%hd %hhd %hu %hhu", 40000, 200, -1, -1), "-25536 -56 65535 255");
  EXPECT_EQ(stringWithFormat("%x %X %o %lx", -1, 48879, 8, -1),
            "ffffffff BEEF 10 ffffffffffffffff");
  EXPECT_EQ(stringWithFormat("%zu %td %jd %qd", 1, 2, 3, 4), "1 2 3 4");
}

TEST(Format, PrintsFloatingPointNumbersWithAPointWhateverTheLocale) {
  EXPECT_EQ(stringWithFormat("%f %.2f %0.f %e %g", 1.5, 1.005, 2.5, 12345.678, 1e-5),
            "1.500000 1.00 2 1.234568e+04 1e-05");
  EXPECT_EQ(stringWithFormat("%.1f %f", 3, 2U), "3.0 2.000000");
  EXPECT_EQ(stringWithFormat("%f %F %5g", INFINITY, -INFINITY, NAN), "inf -INF   nan");
}

TEST(Format, PrintsCharactersAsOneByte) {
  EXPECT_EQ(stringWithFormat("%c%c\\%c", 'a', 66, '%'), "aB\\%");
  EXPECT_EQ(stringWithFormat("%c", 0), "\0"s);
  EXPECT_EQ(stringWithFormat("%c", 256 + 'x'), "x");
}

TEST(Format, PrintsAddressesInLowerCaseHexadecimal) {
  EXPECT_EQ(stringWithFormat("%p", reinterpret_cast<const void*>(0xBEEF)), "0xbeef");
  EXPECT_EQ(stringWithFormat("%p", nullptr), "0x0");
  const auto object = std::make_shared<NSObject>();
  EXPECT_EQ("<NSObject: " + stringWithFormat("%p", object) + ">", object->description());
}

TEST(Format, WidthAndPrecisionOfTextCountUtf16Units) {
  EXPECT_EQ(stringWithFormat("[%5@][%-5@][%5s]", "ü", "€", "ab"), "[    ü][€    ][   ab]");
  EXPECT_EQ(stringWithFormat("[%4@]", "😀"), "[  😀]");
  EXPECT_EQ(stringWithFormat("[%.2@][%.2s][%.0@][%.@]", "äöü", "abc", "abc", "abc"),
            "[äö][ab][][]");
  EXPECT_EQ(stringWithFormat("[%.2@][%.1@]", "😀a", "😀a"), "[😀][]");
  EXPECT_EQ(stringWithFormat("[%05@]", "a"), "[    a]");
}

TEST(Format, TakesWidthAndPrecisionFromArguments) {
  EXPECT_EQ(stringWithFormat("[%*d][%-*d]", 4, 7, 4, 7), "[   7][7   ]");
  EXPECT_EQ(stringWithFormat("[%*d]", -4, 7), "[7   ]");
  EXPECT_EQ(stringWithFormat("[%.*f][%.*f]", 1, 2.25, -1, 2.25), "[2.2][2.250000]");
  EXPECT_EQ(stringWithFormat("[%2$*1$d]", 4, 7), "[   7]");
}

TEST(Format, IgnoresArgumentsTooMany) {
  EXPECT_EQ(stringWithFormat("%d", 1, 2, "x"), "1");
}

TEST(Format, RaisesForTooFewArguments) {
  EXPECT_EQ(refusal("%@ %@", "a"), "Too few arguments in the format \"%@ %@\"");
  EXPECT_EQ(refusal("%2$@", "a"), "Too few arguments in the format \"%2$@\"");
  EXPECT_EQ(refusal("%0$@", "a"), "Too few arguments in the format \"%0$@\"");
  EXPECT_EQ(refusal("%*d", 1), "Too few arguments in the format \"%*d\"");
}

TEST(Format, RefusesWhatItDoesNotKnow) {
  EXPECT_EQ(refusal("%n", 1), "Conversion that is not known or refused, %n in the format \"%n\"");
  for (const char* format : {"%k", "%20b", "%-", "%", "%5", "%.", "%l", "%2$", "% ", "%\xFF"})
    EXPECT_NE(refusal(format, 1, 1), "no exception") << format;
}

TEST(Format, RefusesArgumentsOfAnotherKind) {
  const id object = box("1");
  EXPECT_EQ(refusal("%d", 1.0), "Argument that is no integer in the format \"%d\"");
  EXPECT_EQ(refusal("%d", "1"), "Argument that is no integer in the format \"%d\"");
  EXPECT_EQ(refusal("%c", object), "Argument that is no integer in the format \"%c\"");
  EXPECT_EQ(refusal("%f", "1"), "Argument that is no number in the format \"%f\"");
  EXPECT_EQ(refusal("%s", 1), "Argument that is no text in the format \"%s\"");
  EXPECT_EQ(refusal("%p", "1"), "Argument that is no address in the format \"%p\"");
  EXPECT_EQ(refusal("%*d", "1", 1), "Argument that is no integer in the format \"%*d\"");
}

TEST(Format, RefusesFieldsThatWouldExhaustMemory) {
  EXPECT_EQ(stringWithFormat("%65535d", 1).size(), 65535U);
  for (const char* format : {"%65536d", "%.99999999999999999999d", "%99999999999$d"})
    EXPECT_NE(refusal(format, 1), "no exception") << format;
  EXPECT_NE(refusal("%*d", 65536, 1), "no exception");
  EXPECT_NE(refusal("%*d", std::numeric_limits<int>::min(), 1), "no exception");
}

/// "%", some flags, a width and a precision, each there or not.
std::string anyField(const std::string& flags) {
  std::string field = "%" + *rc::gen::container<std::string>(rc::gen::elementOf(flags));
  if (*rc::gen::arbitrary<bool>()) field += std::to_string(*rc::gen::inRange(1, 30));
  if (*rc::gen::arbitrary<bool>()) field += "." + std::to_string(*rc::gen::inRange(0, 25));
  return field;
}

TEST(Format, PrintsIntegersAsTheCLibraryDoes) {
  EXPECT_TRUE(rc::check([](long long value) {
    const std::string field = anyField("-+ #0");
    const char conversion = *rc::gen::element('d', 'i', 'u', 'x', 'X', 'o');
    const std::string length = *rc::gen::element(""s, "h"s, "hh"s, "l"s, "ll"s, "j"s, "z"s, "t"s);
    const long long number = *rc::gen::element(value, 0LL, value % 1000);
    const std::string format = field + length + conversion;
    if (length.size() == 1 && length != "h") {
      RC_ASSERT(stringWithFormat(format, number) == printed(format, static_cast<long>(number)));
    } else if (length == "ll") {
      RC_ASSERT(stringWithFormat(format, number) == printed(format, number));
    } else {
      RC_ASSERT(stringWithFormat(format, number) == printed(format, static_cast<int>(number)));
    }
  }));
}

TEST(Format, PrintsFloatingPointNumbersAsTheCLibraryDoes) {
  EXPECT_TRUE(rc::check([](double value) {
    const std::string format =
        anyField("-+ #0") + *rc::gen::element('e', 'E', 'f', 'F', 'g', 'G', 'a', 'A');
    const double number = *rc::gen::element(value, 0.0, -0.0, 0.5, 2.5, 100000.0, 1e15, 123456789.0,
                                            9.995, 1e300, 5e-324, double{INFINITY}, double{-NAN});
    RC_LOG() << format << ' ' << number;
    RC_ASSERT(stringWithFormat(format, number) == printed(format, number));
  }));
}

TEST(Format, AnyFormatFillsOrRaises) {
  EXPECT_TRUE(rc::check([] {
    const auto format = *rc::gen::container<std::string>(
        rc::gen::element('%', '%', '@', 'd', 's', 'f', 'x', 'n', 'c', 'p', '$', '*', '.', '1', '2',
                         '0', '-', 'l', 'a', '\xFF'));
    try {
      stringWithFormat(format, 1, "text", box("object"), 2.5);
    } catch (const NSException& exception) {
      RC_ASSERT(exception.name() == NSInvalidArgumentException);
    }
  }));
}

TEST(Format, TextPassesThroughUnchanged) {
  EXPECT_TRUE(rc::check([] {
    const std::string text = *rc::gen::oneOf(anyText(), anyBytes());
    RC_ASSERT(stringWithFormat("%@", text) == text);
    RC_ASSERT(stringWithFormat("<%s>%@", text, box(text)) == "<" + text + ">" + text);
  }));
}

TEST(Format, FillsAMegabyte) {
  std::string format;
  for (int i = 0; i < 1 << 18; ++i)
    format += "%1$d";
  EXPECT_EQ(stringWithFormat(format, 7), std::string(1 << 18, '7'));
}

}  // namespace
}  // namespace rvf
