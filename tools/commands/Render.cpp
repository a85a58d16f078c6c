// kvsubstance render: one or two packages become a picture.

#include "embedded/engine/Statistics.h"
#include "tools/AtomicFile.h"
#include "tools/MaterialOptions.h"
#include "tools/PngFile.h"
#include "tools/Stacking.h"
#include "tools/commands/Commands.h"

#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace tool {
namespace {

struct Options {
    MaterialOptions material;
    std::string picture;
    std::string stateFile;
    bool explains = false;
    bool counts = false;
};

void printStatistics() {
    constexpr double mebibyte = 1 << 20;
    const embedded::Statistics statistics = embedded::statistics();
    std::cout << "nodes run " << statistics.nodesRun << ", pixels computed " << statistics.pixelsComputed
              << "\nmemory of images: " << static_cast<double>(statistics.mostBytesHeld) / mebibyte
              << " MiB at most, " << static_cast<double>(statistics.bytesHeld) / mebibyte
              << " MiB kept for the next run\n";
}

void run(const Options& options) {
    std::vector<std::string> needed = options.material.files();
    checkDestination(options.picture, needed);
    needed.push_back(options.picture);
    if (!options.stateFile.empty()) checkDestination(options.stateFile, needed);
    PreparedMaterial prepared(options.material);
    if (options.explains) explainStacking(std::cout, prepared.bottom(), prepared.top(), *prepared.material());
    const kvString::CString state = prepared.material()->getStateString();
    // The picture is that of the values as saved, whose floats have six decimals.
    if (!options.stateFile.empty()) prepared.material()->applyStateString(state);
    const Texture texture = prepared.render();
    writePng(options.picture, texture, toText(prepared.receiptFor(texture)));
    if (!options.stateFile.empty()) writeFileAtomically(options.stateFile, {state.asChar(), state.length()});
    if (options.counts) printStatistics();
}

} // namespace

void addRender(CLI::App& app, int&) {
    const auto options = std::make_shared<Options>();
    CLI::App* const command = app.add_subcommand("render", "Render a material to a PNG picture");
    options->material.addTo(*command);
    command->add_option("-o,--output", options->picture, "The picture to write")
        ->type_name("FILE.png")
        ->required();
    command->add_option("--save-state", options->stateFile, "Write the material's values to this file")
        ->type_name("FILE");
    command->add_flag("--explain", options->explains,
                      "Print which outputs feed which inputs, and by which name");
    command->add_flag("--stats", options->counts, "Print what the engine computed, and the memory it took");
    command->footer(
        "The picture carries a receipt, which \"kvsubstance verify\" checks.\n"
        "Example: kvsubstance render brick_wall.kvpkg moss_overgrowth.kvpkg -o mossy_wall.png --size 1024 "
        "--set coverage=0.7");
    command->callback([options] { run(*options); });
}

} // namespace tool
