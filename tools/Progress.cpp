#include "tools/Progress.h"

#include <cstdio>
#include <iostream>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

namespace tool {
namespace {

constexpr int barWidth = 30; // characters

bool isOutputATerminal() {
#if defined(_WIN32)
    return _isatty(_fileno(stdout)) != 0;
#else
    return isatty(STDOUT_FILENO) != 0;
#endif
}

} // namespace

Progress::Progress(int totalSteps)
    : total(totalSteps)
    , isTerminal(isOutputATerminal()) {}

Progress::~Progress() {
    if (isTerminal && done > 0) std::cout << std::endl;
}

void Progress::advance(const std::string& text) {
    ++done;
    const std::string count = std::to_string(done) + "/" + std::to_string(total);
    if (!isTerminal) {
        std::cout << count << " " << text << std::endl;
        return;
    }
    const int filled = barWidth * done / total;
    // Back to the line's start, and clear it to its end behind the text.
    std::cout << "\r[" << std::string(static_cast<size_t>(filled), '#')
              << std::string(static_cast<size_t>(barWidth - filled), '.') << "] " << count << " " << text
              << "\x1b[K" << std::flush;
}

} // namespace tool
