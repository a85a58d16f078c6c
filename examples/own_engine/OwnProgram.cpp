#include "OwnProgram.h"

#include <algorithm>
#include <locale>
#include <sstream>

namespace own {

int componentCount(int type) {
    switch (type) {
    case SubstanceInputFloat:
    case SubstanceInputInteger:
    case SubstanceInputImage:
        return 1;
    case SubstanceInputFloat2:
    case SubstanceInputInteger2:
        return 2;
    case SubstanceInputFloat3:
    case SubstanceInputInteger3:
        return 3;
    case SubstanceInputFloat4:
    case SubstanceInputInteger4:
        return 4;
    default:
        return 0;
    }
}

bool isInteger(int type) {
    return type == SubstanceInputInteger || type >= SubstanceInputInteger2;
}

bool isFormat(int format) {
    return format == SubstanceFormatRgba8 || format == SubstanceFormatSrgb;
}

// Hosts set locales that write numbers in other ways, hence the classic one.
std::string write(const Program& program) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << "own-program " << program.inputs.size() << " " << program.outputs.size() << "\n";
    for (const Input& input : program.inputs) {
        text << input.uid << " " << input.type << " " << input.isResolution;
        for (const std::uint32_t word : input.value) text << " " << word;
        text << "\n";
    }
    for (const Output& output : program.outputs) {
        text << output.uid << " " << output.format << " " << output.mipmaps << " " << output.sources.size();
        for (const int source : output.sources) text << " " << source;
        text << "\n";
    }
    text << "end";
    return text.str();
}

std::optional<Program> read(const void* data, std::size_t size) {
    if (!data) return std::nullopt;
    std::istringstream text(std::string(static_cast<const char*>(data), size));
    text.imbue(std::locale::classic());
    std::string word;
    std::size_t inputCount = 0, outputCount = 0;
    text >> word >> inputCount >> outputCount;
    if (!text || word != "own-program" || std::max(inputCount, outputCount) > maxPorts) return std::nullopt;

    Program program;
    program.inputs.resize(inputCount);
    for (Input& input : program.inputs) {
        text >> input.uid >> input.type >> input.isResolution;
        for (std::uint32_t& bits : input.value) text >> bits;
        if (!text || componentCount(input.type) == 0) return std::nullopt;
        if (input.isResolution && input.type != SubstanceInputInteger2) return std::nullopt;
    }
    program.outputs.resize(outputCount);
    for (std::size_t i = 0; i < outputCount; ++i) {
        Output& output = program.outputs[i];
        std::size_t sourceCount = 0;
        text >> output.uid >> output.format >> output.mipmaps >> sourceCount;
        if (!text || !isFormat(output.format) || sourceCount > 2 * maxPorts) return std::nullopt;
        output.sources.resize(sourceCount);
        // Outputs read earlier ones only, so that no program runs in circles.
        for (int& source : output.sources)
            if (!(text >> source) || source >= static_cast<int>(inputCount) || -source > static_cast<int>(i))
                return std::nullopt;
    }
    // A text that was cut lacks its end.
    if (!(text >> word) || word != "end" || text.peek() != std::istringstream::traits_type::eof())
        return std::nullopt;
    return program;
}

} // namespace own
