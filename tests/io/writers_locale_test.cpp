#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <locale>
#include <string>

#include <tessolv/tessolv.h>

#include "support/matrices.h"
#include "support/temporary_file.h"

// Files in a program that prints numbers another way.

using namespace zeb::tessolv;
using namespace test;

namespace {

std::string all_files()
{
    const dense2D<double> pos = points({{1234567.5, -0.25, 1e300}, {1e-300, 0.1, 3}, {1, 2, 3}});
    const dense2D<unsigned> connect = columns({{0, 1, 2}});
    const dense2D<float> field = filled(3, 2, 1234567.5f);
    std::string bytes;
    const temporary_file file;
    EXPECT_EQ(vtk_output(file.name(), pos, connect, EL_TRIA3), 0);
    bytes += file.bytes();
    EXPECT_EQ(medit_output(file.name(), pos, connect, EL_TRIA3), 0);
    bytes += file.bytes();
    EXPECT_EQ(medit_tensor(file.name(), field), 0);
    bytes += file.bytes();
    EXPECT_EQ(ensight_output(file.name(), pos, connect, EL_TRIA3), 0);
    return bytes + file.bytes();
}

struct grouped_comma : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(WritersInAnotherLocale, WriteTheSameBytesUnderALocaleOfCpp)
{
    const std::string expected = all_files();
    const std::locale before = std::locale::global(std::locale(std::locale(), new grouped_comma));
    const std::string bytes = all_files();
    std::locale::global(before);
    EXPECT_EQ(bytes, expected);
}

TEST(WritersInAnotherLocale, WriteTheSameBytesUnderALocaleOfC)
{
    const std::string expected = all_files();
    if (TESTS_LOCALES[0] != '\0') setenv("LOCPATH", TESTS_LOCALES, 1);
    bool found = false;
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "fr_FR.utf8", "de_DE", "fr_FR"})
        found = found || std::setlocale(LC_ALL, name) != nullptr;
    if (!found) GTEST_SKIP() << "no locale with a decimal comma on this machine";
    char text[20];
    std::snprintf(text, sizeof text, "%.1f", 0.5);
    const std::string bytes = all_files();
    const std::string now = std::setlocale(LC_ALL, nullptr);
    std::setlocale(LC_ALL, "C");
    EXPECT_STREQ(text, "0,5");
    EXPECT_EQ(bytes, expected);
    EXPECT_NE(now, "C") << "a writer has set the locale";
}

}  // namespace
