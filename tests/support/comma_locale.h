#ifndef TESTS_SUPPORT_COMMA_LOCALE_H
#define TESTS_SUPPORT_COMMA_LOCALE_H

#include <clocale>
#include <cstdlib>
#include <locale>
#include <string>

namespace test {

// While it lives, the program writes 1.000,5: streams surely, the C runtime where there is such a locale, in the folder
// TESTS_LOCALES or in the system.
class comma_locale {
public:
    comma_locale() : before_(std::locale::global(std::locale(std::locale::classic(), new punctuation)))
    {
#ifdef TESTS_LOCALES
        if (TESTS_LOCALES[0] != '\0') setenv("LOCPATH", TESTS_LOCALES, 1);
#endif
        for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "fr_FR.UTF-8", "fr_FR.utf8"})
            if (std::setlocale(LC_ALL, name) != nullptr) break;
    }
    comma_locale(const comma_locale&) = delete;
    comma_locale& operator=(const comma_locale&) = delete;
    ~comma_locale()
    {
        std::locale::global(before_);
        std::setlocale(LC_ALL, "C");
    }

private:
    struct punctuation : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\1"; }
    };

    std::locale before_;
};

}  // namespace test

#endif
