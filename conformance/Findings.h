// How clauses say what they found: they return, or throw one of these.
#pragma once

#include <string>
#include <type_traits>

namespace kvSubstance::conformance {

struct Broken {
    std::string observed;
};

struct NotJudged {
    std::string reason;
};

template <typename Text>
void expect(bool isMet, const char* expected, const Text& seen) {
    if (isMet) return;
    if constexpr (std::is_arithmetic_v<Text>)
        throw Broken{std::string("expected ") + expected + ", saw " + std::to_string(seen)};
    else
        throw Broken{std::string("expected ") + expected + ", saw " + seen};
}

inline void expectSuccess(unsigned int status, const char* call) {
    if (status != 0)
        throw Broken{std::string("expected ") + call + " to succeed, saw " + std::to_string(status)};
}

inline void expectRefusal(unsigned int status, const char* call) {
    if (status == 0) throw Broken{std::string("expected ") + call + " to be refused, saw 0"};
}

} // namespace kvSubstance::conformance
