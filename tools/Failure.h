// What ends a command early. The text is one whole line that says which file or option, what is wrong with
// it, and what to do.
#pragma once

#include <stdexcept>

namespace tool {

enum ExitStatus { Succeeded = 0, Failed = 1, BadUsage = 2 };

// What was asked for could not be done: exit status Failed.
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The command line makes no sense, whatever the files hold: exit status BadUsage.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

} // namespace tool
