// kvsubstance sweep: a picture for each of many values of one input, or of two.

#include "embedded/compiler/Literal.h"
#include "tools/AtomicFile.h"
#include "tools/ContactSheet.h"
#include "tools/Failure.h"
#include "tools/FileNames.h"
#include "tools/InputValue.h"
#include "tools/MaterialOptions.h"
#include "tools/PngFile.h"
#include "tools/Progress.h"
#include "tools/commands/Commands.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>
#include <tuple>

namespace tool {
namespace {

constexpr int maxSteps = 1000;
constexpr const char* form = "IDENTIFIER=FROM..TO:STEPS, such as scale=1..8:5";

struct Options {
    MaterialOptions material;
    std::vector<std::string> variations;
    std::string folder;
    std::string sheet;
};

// What --vary says.
struct VariationText {
    std::string identifier;
    std::string from;
    std::string to;
    int steps = 0;
};

VariationText splitVariation(const std::string& text) {
    VariationText variation;
    std::string range;
    std::tie(variation.identifier, range) = splitAssignment(text, "--vary", form);
    const size_t dots = range.find("..");
    const size_t colon = range.rfind(':');
    if (dots == std::string::npos || colon == std::string::npos || colon < dots)
        throw UsageError("--vary " + text + ": expected " + form);
    variation.from = range.substr(0, dots);
    variation.to = range.substr(dots + 2, colon - dots - 2);
    const auto steps = embedded::parseInteger(range.substr(colon + 1));
    if (!steps || *steps < 1 || *steps > maxSteps)
        throw UsageError("--vary " + text + ": expected from 1 to " + std::to_string(maxSteps) + " steps");
    variation.steps = *steps;
    return variation;
}

// One input and the values that it runs through.
struct Variation {
    kvSubstance::SubstanceInput* input;
    std::vector<embedded::Value> values;
    int digits = 4; // of numbers in labels
};

embedded::Value between(const embedded::Value& from, const embedded::Value& to, double position) {
    embedded::Value value = from;
    for (size_t i = 0; i < 4; ++i) {
        const auto mixed = [position](double a, double b) { return a + (b - a) * position; };
        value.floats[i] = static_cast<float>(mixed(from.floats[i], to.floats[i]));
        value.integers[i] = static_cast<std::int32_t>(std::lround(mixed(from.integers[i], to.integers[i])));
    }
    return value;
}

// Such as: 2.5, #80ff00
std::string textOf(const embedded::Value& value, bool isColour, int digits) {
    std::string label = isColour ? "#" : "";
    for (int i = 0; i < embedded::componentCount(value.type); ++i) {
        char text[32];
        const double number = embedded::component(value, i);
        if (isColour) {
            std::snprintf(text, sizeof text, "%02x",
                          static_cast<unsigned>(std::lround(std::clamp(number, 0.0, 1.0) * 255)));
        } else {
            if (i) label += ",";
            *std::to_chars(text, text + sizeof text - 1, number, std::chars_format::general, digits).ptr =
                '\0';
        }
        label += text;
    }
    return label;
}

std::string labelOf(const Variation& variation, const embedded::Value& value) {
    const bool isColour = variation.input->getWidget() == kvSubstance::WidgetColor;
    return std::string(variation.input->getIdentifier().asChar()) + "=" +
           textOf(value, isColour, variation.digits);
}

// As many digits as tell all values apart, where floats have them.
int digitsFor(const std::vector<embedded::Value>& values) {
    constexpr int fewest = 4;
    constexpr int most = 10;
    int digits = fewest;
    for (size_t i = 1; i < values.size() && digits < most; ++i)
        while (digits < most && textOf(values[i], false, digits) == textOf(values[i - 1], false, digits))
            ++digits;
    return digits;
}

Variation makeVariation(const VariationText& text, const kvSubstance::Substance& material) {
    const std::string place = "--vary " + text.identifier;
    Variation variation{&requireInput(material, text.identifier, place), {}};
    noteIfAmbiguous(material, text.identifier, place);
    const embedded::Value from = parseInputValue(*variation.input, text.from, place);
    const embedded::Value to = parseInputValue(*variation.input, text.to, place);
    for (int step = 0; step < text.steps; ++step)
        variation.values.push_back(between(from, to, text.steps == 1 ? 0.0 : step / (text.steps - 1.0)));
    variation.digits = digitsFor(variation.values);
    return variation;
}

// Without what cannot stand in the name of a file.
std::string asFileName(std::string label) {
    for (char& c : label)
        if (c == ' ' || std::strchr("/\\:*?\"<>|", c)) c = '_';
    return label;
}

std::string numbered(int number, int count) {
    const std::string digits = std::to_string(number);
    return std::string(std::to_string(count).size() - digits.size(), '0') + digits;
}

void run(const Options& options) {
    std::vector<VariationText> texts;
    for (const std::string& text : options.variations) texts.push_back(splitVariation(text));
    if (texts.size() > 2) throw UsageError("--vary can be given once or twice, for a row or a grid");
    if (texts.size() == 2 && texts[0].identifier == texts[1].identifier)
        throw UsageError("--vary " + texts[0].identifier + ": given twice; vary another input along with it");
    if (!options.sheet.empty()) checkDestination(options.sheet, options.material.files());

    PreparedMaterial prepared(options.material);
    const Variation rows = makeVariation(texts.front(), *prepared.material());
    const Variation columns =
        texts.size() == 2 ? makeVariation(texts.back(), *prepared.material()) : Variation{nullptr, {{}}, 0};
    const int count = static_cast<int>(rows.values.size() * columns.values.size());
    const int across = columns.input ? static_cast<int>(columns.values.size()) : 0;
    if (!options.sheet.empty()) checkContactSheet(count, defaultThumbnailSide, across);
    makeFolder(options.folder);

    std::vector<SheetEntry> entries;
    std::vector<SheetMark> marks;
    Progress progress(count);
    for (const embedded::Value& rowValue : rows.values) {
        setInputValue(prepared.material(), *rows.input, rowValue);
        for (const embedded::Value& columnValue : columns.values) {
            std::string label = labelOf(rows, rowValue);
            if (columns.input) {
                setInputValue(prepared.material(), *columns.input, columnValue);
                label += " " + labelOf(columns, columnValue);
            }
            const Texture texture = prepared.render();
            const Receipt receipt = prepared.receiptFor(texture);
            const std::string name =
                numbered(static_cast<int>(entries.size()) + 1, count) + "_" + asFileName(label) + ".png";
            const std::string path = inFolder(options.folder, name);
            writePng(path, texture, toText(receipt));
            entries.push_back({label, makeThumbnail(toPicture(texture), defaultThumbnailSide)});
            marks.push_back({label, receipt.pixels});
            progress.advance(path);
        }
    }
    if (options.sheet.empty()) return;
    const Texture sheet = toTexture(makeContactSheet(entries, defaultThumbnailSide, across));
    writePng(options.sheet, sheet, sheetReceipt(sheet, std::move(marks)));
}

} // namespace

void addSweep(CLI::App& app, int&) {
    const auto options = std::make_shared<Options>();
    CLI::App* const command =
        app.add_subcommand("sweep", "Render a picture for each of many values of one input, or of two");
    options->material.addTo(*command);
    command
        ->add_option("--vary", options->variations,
                     "An input and its values, such as scale=1..8:5; a second --vary makes a grid, the first "
                     "down and the second across")
        ->type_name("IDENTIFIER=FROM..TO:STEPS")
        ->required()
        ->allow_extra_args(false);
    command->add_option("-o,--output", options->folder, "The folder for the pictures; created when missing")
        ->type_name("FOLDER")
        ->required();
    command->add_option("--sheet", options->sheet, "Also write a contact sheet")->type_name("FILE.png");
    command->footer("Example: kvsubstance sweep brick_wall.kvpkg --vary rows=4..16:4 "
                    "--vary brick_colour=#803020..#c0b090:3 -o sweep --sheet sweep.png");
    command->callback([options] { run(*options); });
}

} // namespace tool
