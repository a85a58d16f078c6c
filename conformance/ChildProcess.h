// Runs this program once more, so that what a clause brings down is not the report.
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace kvSubstance::conformance {

struct ChildEnd {
    enum class Kind { Exited, Crashed, TimedOut, NotStarted };
    Kind kind = Kind::NotStarted;
    unsigned int status = 0; // exit status, or the number of the signal or exception
    std::string output;      // standard output; standard error is shared
};

// With the arguments that main() was given and some more, which have no blanks or quotes. Ended when it takes
// longer than the limit.
ChildEnd runAgain(char** argv, const std::vector<std::string>& moreArguments, std::chrono::seconds limit);

} // namespace kvSubstance::conformance
