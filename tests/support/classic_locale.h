#ifndef TESTS_SUPPORT_CLASSIC_LOCALE_H
#define TESTS_SUPPORT_CLASSIC_LOCALE_H

#include <clocale>
#include <locale>

namespace test {

// While it lives, printf, scanf and new streams of this thread work as in the C locale: for models that compare with the
// C runtime, in programs that run with a decimal comma.
class classic_locale {
public:
    classic_locale() : before_(uselocale(c_locale())), streams_(std::locale::global(unnamed_classic())) {}
    classic_locale(const classic_locale&) = delete;
    classic_locale& operator=(const classic_locale&) = delete;
    ~classic_locale()
    {
        std::locale::global(streams_);
        uselocale(before_);
    }

private:
    static locale_t c_locale()
    {
        static const locale_t c = newlocale(LC_ALL_MASK, "C", nullptr);
        return c;
    }

    // A locale with a name would be handed to setlocale too.
    static const std::locale& unnamed_classic()
    {
        static const std::locale unnamed(std::locale::classic(), new std::numpunct<char>);
        return unnamed;
    }

    locale_t before_;
    std::locale streams_;
};

}  // namespace test

#endif
