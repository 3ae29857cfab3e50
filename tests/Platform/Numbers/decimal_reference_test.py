#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Compares decimal arithmetic with Python's decimal module on 100,000 random calculations.

Usage: decimal_reference_test.py PROBE [SEED]
"""

import decimal
import random
import re
import subprocess
import sys
from decimal import Decimal

CALCULATIONS = 100_000
DIGITS, LOWEST_EXPONENT, HIGHEST_EXPONENT = 38, -128, 127
NO_SCALE = 32767
NO_ERROR, LOSS_OF_PRECISION, UNDERFLOW, OVERFLOW, DIVIDE_BY_ZERO = range(5)
MODES = [decimal.ROUND_HALF_UP, decimal.ROUND_FLOOR, decimal.ROUND_CEILING, decimal.ROUND_HALF_EVEN]
NUMBER = re.compile(r"[ \t]*([+-]?(?:[0-9]+(?:\.[0-9]*)?|\.[0-9]+)(?:[eE][+-]?[0-9]+)?)")
NAN = Decimal("NaN")


def range_context(rounding):
    """The mantissas and exponents of our numbers, as a context."""
    return decimal.Context(prec=DIGITS, rounding=rounding, Emin=LOWEST_EXPONENT + DIGITS - 1,
                           Emax=HIGHEST_EXPONENT + DIGITS - 1, traps=[])


# Wide enough for every exact sum and product. Quotients end in a digit that keeps a second rounding
# right.
WIDE = decimal.Context(prec=700, rounding=decimal.ROUND_05UP, Emin=-9999, Emax=9999, traps=[])


def outcome(value, context, exact):
    if context.flags[decimal.Overflow]:
        return NAN, OVERFLOW
    if value.is_zero() and not exact.is_zero():
        return Decimal(0), UNDERFLOW
    return value, LOSS_OF_PRECISION if context.flags[decimal.Inexact] else NO_ERROR


def rounded(exact, mode, scale):
    """The exact value in our range, with at most `scale` decimals; rounded once."""
    context = range_context(mode)
    if scale == NO_SCALE:
        return outcome(context.plus(exact), context, exact)
    finest = max(-scale, LOWEST_EXPONENT)
    if not exact.is_zero():
        finest = max(finest, exact.adjusted() - DIGITS + 1)
    wide = decimal.Context(prec=700, Emin=-9999, Emax=9999, rounding=mode, traps=[])
    value = exact
    if exact.as_tuple().exponent < finest:
        value = exact.quantize(Decimal((0, (1,), finest)), context=wide)
    if value.is_zero() and not exact.is_zero():
        is_underflow = finest == LOWEST_EXPONENT
        return Decimal(0), UNDERFLOW if is_underflow else LOSS_OF_PRECISION
    if not value.is_zero() and value.adjusted() > HIGHEST_EXPONENT + DIGITS - 1:
        return NAN, OVERFLOW
    return value, LOSS_OF_PRECISION if wide.flags[decimal.Inexact] else NO_ERROR


def plain_text(value):
    """Without an exponent and without final zeros behind the point."""
    if value.is_nan():
        return "NaN"
    if value.is_zero():
        return "0"
    text = format(value, "f")
    return text.rstrip("0").rstrip(".") if "." in text else text


class Calculations:
    """Random calculations as lines for the probe, each with its expected answer."""

    def __init__(self, seed):
        self.random = random.Random(seed)

    def number(self):
        kind = self.random.randrange(10)
        if kind == 0:
            return Decimal(self.random.choice([0, 1, -1, 5, -5, 10]))
        if kind < 4:  # money
            return Decimal(self.random.randrange(-10**7, 10**7)).scaleb(-self.random.randrange(5))
        digits = self.random.randint(1, DIGITS)
        mantissa = self.random.randrange(10**digits)
        if kind == 4:  # carries
            mantissa = 10**digits - self.random.randint(1, 5)
        if kind == 5:  # halves
            mantissa = 5 * 10 ** (digits - 1)
        sign = self.random.choice([1, -1])
        spread = 128 if self.random.random() < 0.3 else 25
        exponent = self.random.randint(-spread, spread - 1)
        return Decimal(sign * mantissa).scaleb(exponent, context=WIDE)

    def near(self, other):
        """A number whose digits begin close to where those of the other end."""
        digits = self.random.randint(1, DIGITS)
        lowest = other.as_tuple().exponent - digits + self.random.randint(-5, 5)
        lowest = min(max(lowest, LOWEST_EXPONENT), HIGHEST_EXPONENT)
        sign = self.random.choice([1, -1])
        return Decimal(sign * self.random.randrange(10**digits)).scaleb(lowest, context=WIDE)

    def scale(self):
        choice = self.random.random()
        if choice < 0.5:
            return NO_SCALE
        return self.random.randint(-10, 10) if choice < 0.9 else self.random.randint(-140, 140)

    def arithmetic(self, name):
        a = self.number()
        b = self.near(a) if self.random.random() < 0.3 else self.number()
        mode, scale = self.random.randrange(4), self.scale()
        line = f"{name} {a} {b} {mode} {scale}"
        if name == "divide" and b.is_zero():
            return line, (NAN, DIVIDE_BY_ZERO)
        return line, rounded(getattr(WIDE, name)(a, b), MODES[mode], scale)

    def round(self):
        a, scale, mode = self.number(), self.scale(), self.random.randrange(4)
        if scale == NO_SCALE or -scale <= a.as_tuple().exponent:
            return f"round {a} {scale} {mode}", (a, NO_ERROR)
        return f"round {a} {scale} {mode}", rounded(a, MODES[mode], scale)

    def compare(self):
        a = self.number()
        b = self.random.choice([a, self.number(), a + self.near(a)])
        b = range_context(decimal.ROUND_DOWN).plus(b)
        if b.is_infinite():
            b = -a
        return f"compare {a} {b}", (Decimal(a.compare(b)), NO_ERROR)

    def read(self):
        text = self.text()
        match = NUMBER.match(text)
        context = range_context(decimal.ROUND_DOWN)
        value = context.create_decimal(match[1]) if match else NAN
        if context.flags[decimal.Overflow]:
            value = NAN
        return f"read {text}", (value, NO_ERROR)

    def text(self):
        digits = "".join(self.random.choices("0123456789", k=self.random.randint(0, 60)))
        point = self.random.randint(0, len(digits))
        text = self.random.choice(["", "", "-", "+", " ", " -", "\t", "- ", "--"])
        text += digits[:point] + self.random.choice(["", ".", ".", ","]) + digits[point:]
        if self.random.random() < 0.5:
            text += self.random.choice("eE") + str(self.random.randint(-190, 190))
        return text + self.random.choice(["", "", "", "x", "e", "e+", ".5", " "])

    def any(self):
        name = self.random.choice(
            ["add", "subtract", "multiply", "divide", "round", "compare", "read"])
        if name in ("round", "compare", "read"):
            return getattr(self, name)()
        return self.arithmetic(name)


def main():
    probe = sys.argv[1]
    seed = int(sys.argv[2]) if len(sys.argv) > 2 else 20010101
    decimal.setcontext(WIDE.copy())
    calculations = Calculations(seed)
    cases = [calculations.any() for _ in range(CALCULATIONS)]
    lines = "".join(line + "\n" for line, _ in cases)
    answers = subprocess.run([probe], input=lines, capture_output=True, text=True,
                             check=True).stdout.splitlines()
    if len(answers) != len(cases):
        sys.exit(f"{len(answers)} answers to {len(cases)} calculations")
    wrong = 0
    for (line, (value, error)), answer in zip(cases, answers):
        expected = f"{plain_text(value)} {error}"
        if answer != expected:
            wrong += 1
            if wrong <= 20:
                print(f"{line}\n  is       {answer}\n  expected {expected}")
    print(f"seed {seed}: {len(cases)} calculations, {wrong} of them wrong")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
