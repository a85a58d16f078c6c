// Runs one fuzz target on every input that was worth keeping: its corpus, what was ever found with it, and
// the hand-made ones. What does not hold ends the process.
//
//     replay FOLDER...
#include "fuzzers/Fuzzing.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <vector>

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> filesIn(const fs::path& folder) {
    std::vector<fs::path> files;
    if (!fs::is_directory(folder)) return files; // a target without findings
    for (const auto& entry : fs::directory_iterator(folder))
        if (entry.is_regular_file()) files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

// In a block of exactly its size, so that sanitizers see who reads on.
void run(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> content((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    fuzzing::require(!file.bad(), "the input can be read");
    const std::unique_ptr<std::uint8_t[]> bytes(new std::uint8_t[content.size()]);
    std::copy(content.begin(), content.end(), bytes.get());
    LLVMFuzzerTestOneInput(bytes.get(), content.size());
}

} // namespace

int main(int count, char** arguments) {
    std::size_t inputs = 0;
    for (int i = 1; i < count; ++i) {
        for (const fs::path& path : filesIn(arguments[i])) {
            std::printf("%s\n", path.string().c_str());
            std::fflush(stdout); // the last line names the input that ended the process
            run(path);
            ++inputs;
        }
    }
    std::printf("%zu inputs\n", inputs);
    return inputs > 0 ? 0 : 1;
}
