// kvsubstance sheet: many pictures on one.

#include "tools/AtomicFile.h"
#include "tools/ContactSheet.h"
#include "tools/FileNames.h"
#include "tools/PngFile.h"
#include "tools/Receipt.h"
#include "tools/commands/Commands.h"

#include <memory>

namespace tool {
namespace {

struct Options {
    std::vector<std::string> pictures;
    std::string sheet;
    int side = defaultThumbnailSide;
    int columns = 0;
};

void run(const Options& options) {
    checkDestination(options.sheet, options.pictures);
    checkContactSheet(static_cast<int>(options.pictures.size()), options.side, options.columns);
    std::vector<SheetEntry> entries;
    std::vector<SheetMark> marks;
    for (const std::string& path : options.pictures) {
        const Texture texture = readPng(path).texture;
        const std::string label = stemOf(path);
        entries.push_back({label, makeThumbnail(toPicture(texture), options.side)});
        marks.push_back({label, digestOf(texture)});
    }
    const Texture sheet = toTexture(makeContactSheet(entries, options.side, options.columns));
    writePng(options.sheet, sheet, sheetReceipt(sheet, std::move(marks)));
}

} // namespace

void addSheet(CLI::App& app, int&) {
    const auto options = std::make_shared<Options>();
    CLI::App* const command = app.add_subcommand("sheet", "Lay pictures side by side, with their names");
    command->add_option("FILE", options->pictures, "The pictures, PNG files")->type_name("")->required();
    command->add_option("-o,--output", options->sheet, "The contact sheet to write")
        ->type_name("FILE.png")
        ->required();
    command->add_option("--thumbnail", options->side, "Side of the thumbnails in pixels")
        ->check(CLI::Range(16, 2048))
        ->capture_default_str();
    command->add_option("--columns", options->columns, "Pictures in a row; else a fitting number")
        ->check(CLI::Range(1, 1000));
    command->footer("Example: kvsubstance sheet out/*.png -o sheet.png");
    command->callback([options] { run(*options); });
}

} // namespace tool
