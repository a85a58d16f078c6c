// Runs one fuzz target on every input that was worth keeping: its corpus, what was ever found with it, and
// its first ones. What does not hold ends the process.
//
//     replay FOLDER...
#include "fuzzers/Fuzzing.h"
#include "tests/ReadFile.h"

#include <memory>
#include <set>

namespace {

namespace fs = std::filesystem;

// In a block of exactly its size, so that sanitizers see who reads on.
void run(const fs::path& path) {
    const std::string content = readFile(path);
    const std::unique_ptr<std::uint8_t[]> bytes(new std::uint8_t[content.size()]);
    std::copy(content.begin(), content.end(), bytes.get());
    LLVMFuzzerTestOneInput(bytes.get(), content.size());
}

} // namespace

int main(int count, char** arguments) {
    std::set<fs::path> inputs;
    for (int i = 1; i < count; ++i)
        if (fs::is_directory(arguments[i])) // a target without findings has none
            inputs.insert(fs::directory_iterator(arguments[i]), fs::directory_iterator());
    for (const fs::path& path : inputs) {
        std::printf("%s\n", path.string().c_str());
        std::fflush(stdout); // the last line names the input that ended the process
        run(path);
    }
    std::printf("%zu inputs\n", inputs.size());
    return inputs.empty() ? 1 : 0;
}
