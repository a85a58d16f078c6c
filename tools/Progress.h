// How far a long command has come, on standard output: a bar on a terminal, plain lines elsewhere.
#pragma once

#include <string>

namespace tool {

class Progress {
public:
    explicit Progress(int totalSteps);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress(); // ends the bar's line

    // Another step is done; the text says which.
    void advance(const std::string& text);

private:
    int total;
    int done = 0;
    bool isTerminal;
};

} // namespace tool
