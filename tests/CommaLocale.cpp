// Linked into test programs that are run a second time as if in a country that writes 1.234.567,89: the
// library reads and writes its numbers the same everywhere.
#include <clocale>
#include <cstdlib>
#include <locale>

namespace {

struct CommaNumbers : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

// The C library's locale too, where the machine has one.
const bool isCommaLocale = [] {
    if (!std::getenv("KVSUBSTANCE_COMMA_LOCALE")) return false;
    for (const char* const name : {"de_DE.UTF-8", "de_DE.utf8", "German_Germany"})
        if (std::setlocale(LC_ALL, name)) break;
    std::locale::global(std::locale(std::locale::classic(), new CommaNumbers));
    return true;
}();

} // namespace
