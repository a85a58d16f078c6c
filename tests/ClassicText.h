// A text stream whose numbers look the same under every locale that a test sets.
#pragma once

#include <locale>
#include <sstream>

struct ClassicText : std::ostringstream {
    ClassicText() { imbue(std::locale::classic()); }
};
