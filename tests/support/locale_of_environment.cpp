#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <locale>

// Linked into every program of tests. With TESSOLV_TEST_LOCALE set, all its tests run where numbers are written 1.000,5:
// streams by a facet of our own, the C runtime by the locale of that name.

namespace {

struct comma_punctuation : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\1"; }
};

bool writes_a_comma()
{
    char text[8];
    std::snprintf(text, sizeof text, "%.1f", 0.5);
    return std::strcmp(text, "0,5") == 0;
}

class locale_of_environment : public testing::Environment {
    void SetUp() override
    {
        const char* name = std::getenv("TESSOLV_TEST_LOCALE");
        if (name == nullptr) return;
        std::locale::global(std::locale(std::locale::classic(), new comma_punctuation));
        if (std::setlocale(LC_ALL, name) != nullptr && writes_a_comma()) return;
        std::printf("SKIPPED: the locale %s cannot be had\n", name);
        std::fflush(stdout);
        std::_Exit(0);
    }
};

const testing::Environment* const environment = testing::AddGlobalTestEnvironment(new locale_of_environment);

}  // namespace
