#include "io/number_scan.h"

#include <bit>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "support/classic_locale.h"
#include "support/temporary_file.h"

using namespace zeb::tessolv;

namespace {

// What a reader makes of the number at the beginning of a text.
struct outcome {
    bool is_number = false;
    double value = 0;
    std::size_t length = 0;  // characters that belong to the number
};

std::ostream& operator<<(std::ostream& out, const outcome& o)
{
    if (!o.is_number) return out << "no number";
    return out << std::hexfloat << o.value << " of " << std::dec << o.length << " characters";
}

// Equal to the bit; the payload of a NaN does not count.
bool same_value(double a, double b)
{
    if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b) && std::signbit(a) == std::signbit(b);
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

bool operator==(const outcome& a, const outcome& b)
{
    return a.is_number == b.is_number && (!a.is_number || (same_value(a.value, b.value) && a.length == b.length));
}

// The C runtime, in the C locale.
outcome by_fscanf(const std::string& text)
{
    const test::classic_locale classic;
    outcome o;
    int length = 0;
    o.is_number = std::sscanf(text.c_str(), "%lg%n", &o.value, &length) == 1;
    o.length = static_cast<std::size_t>(length);
    return o;
}

outcome by_stream(const std::string& text)
{
    outcome o;
    std::istringstream in(text);
    in.imbue(std::locale::classic());
    o.is_number = static_cast<bool>(in >> o.value);
    o.length = in.eof() ? text.size() : static_cast<std::size_t>(in.tellg());
    return o;
}

outcome by_runtime(number_rules rules, const std::string& text)
{
    return rules == number_rules::c_scan ? by_fscanf(text) : by_stream(text);
}

outcome by_scanner(number_rules rules, const std::string& text)
{
    outcome o;
    number_scanner scanner(rules);
    while (o.length < text.size() && scanner.accept(text[o.length])) ++o.length;
    o.is_number = scanner.value(o.value);
    return o;
}

constexpr number_rules both[] = {number_rules::c_scan, number_rules::stream};

void expect_as_runtime(const std::string& text)
{
    for (const number_rules rules : both) {
        const outcome expected = by_runtime(rules, text);
        EXPECT_EQ(by_scanner(rules, text), expected)
            << (rules == number_rules::c_scan ? "fscanf" : "stream") << " of \"" << text.substr(0, 80) << "\"";
        outcome plain;
        const std::string padded = text + std::string(8, '\0');
        if (const char* end = read_plain_number(padded.data(), plain.value)) {
            plain.is_number = true;
            plain.length = static_cast<std::size_t>(end - padded.data());
            EXPECT_EQ(plain, expected) << "plain \"" << text << "\"";
        }
    }
}

template <class Number>
std::string printed(const char* format, Number value)
{
    const test::classic_locale classic;
    char text[1300];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

double random_double(std::mt19937_64& random)
{
    return std::bit_cast<double>(random());
}

// Characters that numbers are made of, the frequent ones more than once.
std::string random_text(std::mt19937_64& random)
{
    static const std::string alphabet = "0123456789012345678900001111+-+-...eEeEexXpPabcdfABCDFnNiItTyY ,_(";
    std::string text;
    for (std::size_t k = 1 + random() % 10; k > 0; --k) text += alphabet[random() % alphabet.size()];
    return text;
}

}  // namespace

struct number_form {
    const char* text;
    const char* by_scan;    // what is left of the text behind the number; null if there is none
    const char* by_stream;  // the same for extraction from a stream
};

const number_form number_forms[] = {{"1", "", ""},
                                    {"+1", "", ""},
                                    {"-0", "", ""},
                                    {"--1", nullptr, nullptr},
                                    {"+", nullptr, nullptr},
                                    {".", nullptr, nullptr},
                                    {"-.", nullptr, nullptr},
                                    {"5.", "", ""},
                                    {".5", "", ""},
                                    {".e5", nullptr, nullptr},
                                    {"1.e5", "", ""},
                                    {"1.5.5", ".5", ".5"},
                                    {"1e5.5", ".5", ".5"},
                                    {"1e5e5", "e5", "e5"},
                                    {"1,5", ",5", ",5"},
                                    {"1e", "", nullptr},
                                    {"1.5e+", "", nullptr},
                                    {"1e-x", "x", nullptr},
                                    {"1ex", "x", nullptr},
                                    {"1e++5", "+5", nullptr},
                                    {"1e400", "", nullptr},
                                    {"-1e400", "", nullptr},
                                    {"1e-400", "", ""},
                                    {"1e99999999999999999999", "", nullptr},
                                    {"0e99999999999999999999", "", ""},
                                    {"1e-99999999999999999999", "", ""},
                                    {"1E5", "", ""},
                                    {"nan", "", nullptr},
                                    {"-NaN", "", nullptr},
                                    {"nan(12)", "(12)", nullptr},
                                    {"na", nullptr, nullptr},
                                    {"nam", nullptr, nullptr},
                                    {"inf", "", nullptr},
                                    {"INF", "", nullptr},
                                    {"-inf", "", nullptr},
                                    {"infx", "x", nullptr},
                                    {"infi", nullptr, nullptr},
                                    {"infinit", nullptr, nullptr},
                                    {"infinity", "", nullptr},
                                    {"Infinityy", "y", nullptr},
                                    {"in", nullptr, nullptr},
                                    {"0x", nullptr, "x"},
                                    {"0xg", nullptr, "xg"},
                                    {"0x.", "", "x."},
                                    {"-0x.p3", "p3", "x.p3"},
                                    {"0x1p3", "", "x1p3"},
                                    {"0X1.8P-1", "", "X1.8P-1"},
                                    {"0x1p", "", "x1p"},
                                    {"0x1p+", "", "x1p+"},
                                    {"0xe+1", "+1", "xe+1"},
                                    {"00x1", "x1", "x1"},
                                    {"0x1e5", "", "x1e5"},
                                    {"0x1p1024", "", "x1p1024"},
                                    {"0x1p-1080", "", "x1p-1080"},
                                    {"abc", nullptr, nullptr},
                                    {"", nullptr, nullptr}};

TEST(NumberScan, EndsWhereTheRulesSay)
{
    for (const auto& [text, by_scan, by_stream] : number_forms) {
        SCOPED_TRACE(text);
        const char* const expected[] = {by_scan, by_stream};
        for (const number_rules rules : both) {
            const char* rest = expected[static_cast<int>(rules)];
            const outcome found = by_scanner(rules, text);
            ASSERT_EQ(found.is_number, rest != nullptr);
            EXPECT_EQ(found.is_number ? std::string(text).substr(found.length) : "", rest != nullptr ? rest : "");
        }
        expect_as_runtime(text);
    }
}

TEST(NumberScan, GivesTheValuesThatAreWritten)
{
    const auto value = [](const char* text) { return by_scanner(number_rules::c_scan, text).value; };
    EXPECT_EQ(value("-12.5e1"), -125.0);
    EXPECT_EQ(value("0x1.8p1"), 3.0);
    EXPECT_EQ(value("1e"), 1.0);
    EXPECT_EQ(value("1e400"), std::numeric_limits<double>::infinity());
    EXPECT_EQ(value("-1e400"), -std::numeric_limits<double>::infinity());
    EXPECT_EQ(value("1e-400"), 0.0);
    EXPECT_TRUE(std::signbit(value("-1e-400")));
    EXPECT_TRUE(std::isnan(value("nan")));
    EXPECT_EQ(value("4.9406564584124654e-324"), std::numeric_limits<double>::denorm_min());
}

TEST(NumberScan, ReadsPrintedDoublesAsTheRuntimeDoes)
{
    std::mt19937_64 random(1);
    for (int k = 0; k < 40000; ++k) {
        const double value = random_double(random);
        const double tame = std::ldexp(static_cast<double>(static_cast<std::int64_t>(random())), -40 - k % 30);
        for (const char* format : {"%.17g", "%le", "%.8e", "%a", "%g"}) expect_as_runtime(printed(format, value));
        for (const char* format : {"%f", "%.3f", "%.17g", "%.8f", "%.20g", "%A"})
            expect_as_runtime(printed(format, tame));
    }
}

TEST(NumberScan, ReadsAnyTextAsTheRuntimeDoes)
{
    std::mt19937_64 random(2);
    for (int k = 0; k < 300000; ++k) {
        const std::string text = random_text(random);
        if (text[0] != ' ') expect_as_runtime(text);
    }
}

TEST(NumberScan, RoundsSubnormalsAndTheEdgesOfTheRangeAsTheRuntimeDoes)
{
    std::mt19937_64 random(3);
    for (int k = 0; k < 20000; ++k) {
        const double subnormal = std::bit_cast<double>(random() >> (12 + k % 52));
        expect_as_runtime(printed("%.17g", subnormal));
        expect_as_runtime(printed("%.25e", subnormal));
        expect_as_runtime(printed("%a", subnormal));
        char text[64];
        std::snprintf(text, sizeof text, "0x%llx.%llxp-%d", static_cast<unsigned long long>(random() >> (k % 64)),
                      static_cast<unsigned long long>(random()), 1000 + k % 150);
        expect_as_runtime(text);
        std::snprintf(text, sizeof text, "0x%llx%llxp%d", static_cast<unsigned long long>(random() >> (k % 64)),
                      static_cast<unsigned long long>(random()), 850 + k % 150);
        expect_as_runtime(text);
    }
    for (const char* text : {"1.7976931348623157e308", "1.7976931348623158e308", "1.7976931348623159e308",
                             "2.4703282292062327e-324", "2.4703282292062328e-324", "0x1.fffffffffffff7p1023",
                             "0x1.fffffffffffff8p1023", "0x1p-1075", "0x1.000000000000000001p-1075"})
        expect_as_runtime(text);
}

TEST(NumberScan, RoundsNumbersHalfWayBetweenTwoDoublesAsTheRuntimeDoes)
{
    std::mt19937_64 random(4);
    for (int k = 0; k < 3000; ++k) {
        const double below = std::abs(std::ldexp(1.0 + std::ldexp(static_cast<double>(random() >> 12), -52),
                                                 static_cast<int>(random() % 2000) - 1000));
        const long double middle =
            (static_cast<long double>(below) + static_cast<long double>(std::nextafter(below, HUGE_VAL))) / 2;
        const std::string tie = printed("%.1100Lg", middle);
        const bool has_point = tie.find('.') != std::string::npos && tie.find('e') == std::string::npos;
        expect_as_runtime(tie);
        if (has_point) expect_as_runtime(tie + "0000000000000000000000000000001");
    }
}

TEST(NumberScan, KeepsWhatDecidesTheValueOfVeryLongNumbers)
{
    const std::string zeros(5000, '0');
    const std::string nines(5000, '9');
    const std::string one_and_zeros = "1" + zeros;
    const std::string point_and_zeros = "." + zeros;
    for (std::size_t digits = 1; digits < 60; ++digits)
        for (const std::string sign : {"", "-"})
            for (const char digit : {'1', '9'}) {
                const std::string exponent = std::string(sign).append(digits, digit);
                expect_as_runtime("1.5e" + exponent);
                expect_as_runtime("0x1.8p" + exponent);
            }
    for (const std::string& text :
         {zeros + "1", "0." + zeros + "1e5001", "1" + zeros + "e-5000", one_and_zeros + point_and_zeros + "1e-5000",
          nines, nines + "e-4990", "." + nines, "9007199254740993." + zeros, "9007199254740993." + zeros + "1",
          "0x" + zeros + "1", "0x1" + zeros + "p-20000", "0x" + std::string(700, 'f') + "p-1700",
          "0x10000000000000." + std::string(900, '8'), "0x0." + zeros + "1p20004",
          "0x20000000000001" + zeros + "1p-20004", "1e" + zeros + "5", "1e-" + nines, "-0" + point_and_zeros})
        expect_as_runtime(text);
}

TEST(ReadNumber, ReadsAFileOfManyBlocksAsTheRuntimeDoes)
{
    std::mt19937_64 random(5);
    std::string all;
    std::vector<std::string> lines;
    for (int k = 0; k < 60000; ++k) {
        std::string text =
            k % 3 == 0 ? random_text(random) : printed(k % 3 == 1 ? "%.17g" : "%le", random_double(random));
        if (k % 5000 == 0) text.insert(0, static_cast<std::size_t>(random() % 3000), '7');
        for (char& c : text)
            if (c == ' ') c = '.';
        lines.push_back(text);
        all.append(text).append("\n");
    }
    const test::temporary_file file(all);
    for (const number_rules rules : both) {
        block_reader in;
        ASSERT_EQ(in.open(file.name()), 0);
        for (const std::string& line : lines) {
            outcome found;
            found.is_number = read_number(in, rules, found.value);
            std::string rest;
            for (; in.peek() != '\n'; in.skip(1)) rest += static_cast<char>(in.peek());
            in.skip(1);
            found.length = line.size() - rest.size();
            ASSERT_EQ(found, by_runtime(rules, line)) << "\"" << line.substr(0, 80) << "\"";
        }
        EXPECT_EQ(in.peek(), end_of_file);
    }
}

TEST(ReadNumber, ReadsANumberThatLiesAcrossTwoBlocks)
{
    const std::string number = "-1.234567890123456789e-0123";  // as long as a plain one can be
    for (const number_rules rules : both)
        for (std::size_t blanks = (1 << 18) - 40; blanks < (1 << 18) + 4; ++blanks) {
            const test::temporary_file file(std::string(blanks, ' ') + number + " ");
            block_reader in;
            double value = 0;
            ASSERT_EQ(in.open(file.name()), 0);
            in.pass_while(is_space);
            ASSERT_TRUE(read_number(in, rules, value));
            EXPECT_EQ(value, by_fscanf(number).value);
            EXPECT_EQ(in.peek(), ' ');
        }
}

TEST(ReadNumber, ReadsANumberThatEndsWithTheFile)
{
    for (const char* text : {"1.25", "12345678901234567890", "0x1.4p0", "1.25e"}) {
        const test::temporary_file file(text);
        block_reader in;
        double value = 0;
        ASSERT_EQ(in.open(file.name()), 0);
        EXPECT_TRUE(read_number(in, number_rules::c_scan, value)) << text;
        EXPECT_TRUE(same_value(value, by_fscanf(text).value)) << text;
        EXPECT_EQ(in.peek(), end_of_file);
    }
}
