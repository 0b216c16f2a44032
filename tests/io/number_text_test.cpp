#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <string>

#include "io/number_text.h"
#include "support/classic_locale.h"

// The texts of numbers against those of the C runtime, which prints in the C locale here.

namespace {

using namespace zeb::tessolv;

template <class Number>
struct format {
    const char* pattern;
    char* (*put)(char*, Number);
};

constexpr format<double> real_formats[] = {{"%f", put_fixed},
                                           {"%e", put_scientific},
                                           {"%E", put_scientific_upper},
                                           {"%.8e", put_scientific_8},
                                           {"%12.5e", put_scientific_wide}};

std::string printed(const char* pattern, double value)
{
    const test::classic_locale classic;
    char text[number_room + 1];
    const int length = std::snprintf(text, sizeof text, pattern, value);
    return {text, static_cast<std::size_t>(length)};
}

std::string put(const format<double>& as, double value)
{
    char text[number_room];
    return {text, as.put(text, value)};
}

void expect_texts_of(double value)
{
    for (const format<double>& as : real_formats)
        for (const double v : {value, -value}) {
            const std::string expected = printed(as.pattern, v);
            const std::string text = put(as, v);
            if (text != expected)
                ADD_FAILURE() << as.pattern << " of " << std::hexfloat << v << ": " << text << " instead of "
                              << expected;
        }
}

// The value and those next to it.
void expect_texts_around(double value)
{
    double above = value;
    double below = value;
    expect_texts_of(value);
    for (int step = 0; step < 3; ++step) {
        expect_texts_of(above = std::nextafter(above, HUGE_VAL));
        expect_texts_of(below = std::nextafter(below, -HUGE_VAL));
    }
}

TEST(NumberText, IsWrittenOutForSomeNumbers)
{
    EXPECT_EQ(put({"%f", put_fixed}, 0.5), "0.500000");
    EXPECT_EQ(put({"%f", put_fixed}, -1e-9), "-0.000000");
    EXPECT_EQ(put({"%f", put_fixed}, 1e22), "10000000000000000000000.000000");
    EXPECT_EQ(put({"%e", put_scientific}, -12345.675), "-1.234567e+04");
    EXPECT_EQ(put({"%E", put_scientific_upper}, 1e-300), "1.000000E-300");
    EXPECT_EQ(put({"%E", put_scientific_upper}, -std::numeric_limits<double>::infinity()), "-INF");
    EXPECT_EQ(put({"%.8e", put_scientific_8}, 1.0 / 3.0), "3.33333333e-01");
    EXPECT_EQ(put({"%12.5e", put_scientific_wide}, 0.0), " 0.00000e+00");
    EXPECT_EQ(put({"%12.5e", put_scientific_wide}, -1e100), "-1.00000e+100");
}

TEST(NumberText, IsThatOfTheRuntimeForSpecialValues)
{
    expect_texts_of(0.0);
    expect_texts_of(std::numeric_limits<double>::infinity());
    expect_texts_of(std::numeric_limits<double>::quiet_NaN());
    expect_texts_around(std::numeric_limits<double>::min());
    expect_texts_of(std::numeric_limits<double>::denorm_min());
    expect_texts_of(std::numeric_limits<double>::max());
}

TEST(NumberText, IsThatOfTheRuntimeAroundPowersOfTwo)
{
    for (int e = -1074; e <= 1023; ++e) expect_texts_around(std::ldexp(1.0, e));
}

TEST(NumberText, IsThatOfTheRuntimeAroundDecimalNumbersOfFewDigits)
{
    for (int e = -307; e <= 308; ++e)
        for (const int digits : {1, 2, 5, 9, 95, 995, 1005, 99995}) {
            const double value = std::strtod((std::to_string(digits) + "e" + std::to_string(e - 5)).c_str(), nullptr);
            expect_texts_around(value);
        }
}

TEST(NumberText, IsThatOfTheRuntimeForHalves)
{
    // Integers over powers of two end exactly between two texts now and then.
    std::mt19937_64 random(1);
    for (int round = 0; round < 50000; ++round)
        expect_texts_of(std::ldexp(static_cast<double>(random() % 2000000001), -static_cast<int>(random() % 40)));
}

TEST(NumberText, IsThatOfTheRuntimeForNumbersNextToDecimalHalves)
{
    std::mt19937_64 random(2);
    for (int round = 0; round < 50000; ++round) {
        const double digits = static_cast<double>(random() % 2000000001) + 0.5;
        expect_texts_of(digits * std::pow(10.0, static_cast<int>(random() % 40) - 25));
    }
}

TEST(NumberText, IsThatOfTheRuntimeForAnyBits)
{
    std::mt19937_64 random(3);
    for (int round = 0; round < 100000; ++round) expect_texts_of(std::bit_cast<double>(random()));
}

TEST(NumberText, IsThatOfTheRuntimeForCoordinates)
{
    std::mt19937_64 random(4);
    std::uniform_real_distribution<double> exponent(-12.0, 12.0);
    for (int round = 0; round < 100000; ++round) expect_texts_of(std::pow(10.0, exponent(random)));
}

void expect_texts_of_integer(unsigned n)
{
    const format<unsigned> formats[] = {{"%u", put_unsigned}, {"%d", put_signed}, {"%8d", put_signed_wide}};
    for (const format<unsigned>& as : formats) {
        char expected[20];
        char text[number_room];
        std::snprintf(expected, sizeof expected, as.pattern, n);
        ASSERT_EQ(std::string(text, as.put(text, n)), expected) << as.pattern;
    }
}

TEST(NumberText, IsThatOfTheRuntimeForIntegers)
{
    for (unsigned n = 0; n < 200000; ++n) expect_texts_of_integer(n);
    for (std::uint64_t power = 10; power < 0x100000000; power *= 10)
        for (unsigned d = 0; d < 5; ++d) {
            expect_texts_of_integer(static_cast<unsigned>(power) + d - 2);
            expect_texts_of_integer(0 - static_cast<unsigned>(power) + d - 2);
        }
    for (unsigned shift = 0; shift < 32; ++shift)
        for (unsigned d = 0; d < 5; ++d) expect_texts_of_integer((1u << shift) + d - 2);
    std::mt19937 random(5);
    for (int round = 0; round < 200000; ++round)
        expect_texts_of_integer(static_cast<unsigned>(random()) >> (random() % 32));
}

}  // namespace
