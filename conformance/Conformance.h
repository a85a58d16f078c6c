/// @file
/// Judges an engine and a linker by what the library relies on: the clauses of platform/linker.h and
/// platform/engine.h, one by one, with packages that both understand.
///
/// Whoever brings an engine of their own builds a judge of these lines, linked with kvSubstance::conformance
/// and with their linker and engine:
///
///     #include "conformance/Conformance.h"
///     int main(int argc, char** argv) { return kvSubstance::conformance::run(argc, argv); }
#pragma once

#include "conformance/Interface.h"

#include <string>
#include <vector>

namespace kvSubstance::conformance {

/// One thing that the library relies on.
struct Clause {
    const char* name;      ///< Words joined by hyphens.
    const char* statement; ///< One sentence.
};

/// All clauses, in the order in which a report lists them.
const std::vector<Clause>& clauses();

/// How a clause came out.
enum class Judgement {
    Kept,     ///< All that was tried was as it should be.
    Broken,   ///< Something was not.
    NotJudged ///< The packages have nothing that this clause could be judged by.
};

/// What was found of one clause.
struct Verdict {
    Judgement judgement = Judgement::Kept; ///< How it came out.
    std::string observed; ///< Broken: what was expected and what was seen. NotJudged: what is missing.
};

/// The bytes of package files. What they hold decides how much can be judged: best is a bottom with two
/// outputs and numeric inputs, and a top with an image input and numeric inputs of types that the bottom has
/// too.
struct Packages {
    std::string bottom; ///< Stands alone.
    std::string top;    ///< Empty: none, so that nothing is judged that takes a stack.
};

/// Judges one clause in this process, which a broken engine may bring down. Not judged when there is no
/// clause of that name. Pictures are compared byte for byte and are 32 texels wide where an input $resolution
/// is there. One call at a time in a process.
Verdict judge(const std::string& clauseName, const Interface& judged, const Packages& packages);

/// The program kvsubstance-conformance for the functions that it is linked with; "--help" tells what it
/// takes. Each clause is judged in a process of its own, so that crashes and hangs are findings like others.
/// The exit status: 0 nothing is broken, 1 something is, 2 wrong usage or an unreadable file.
int run(int argc, char** argv);

} // namespace kvSubstance::conformance
