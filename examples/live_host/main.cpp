// A host with a document: two materials are edited side by side, each is rendered again when something in it
// has really changed, and both are stored as text. Standard input takes the place of a user interface:
//
//   live_host bottom.kvpkg top.kvpkg
//
//   list left                 the inputs of the material "left", with their values
//   set right coverage 0.9    one number for each component
//   save FILE, open FILE      the document
//
// After each command whatever changed is rendered. A command that makes no sense is told on standard error,
// and the exit status is 1 in the end.
#include "bridge/Bridge.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using kvSubstance::Substance;
using kvSubstance::SubstanceInput;

kv::vector<char> load(const char* path) {
    kv::vector<char> content;
    kvSubstance::readSubstanceContent(kvString::IString(path, kvString::EncodingMultibyte), content);
    if (content.empty()) throw std::runtime_error(std::string(path) + " cannot be read");
    return content;
}

// A type says how many numbers make a value (none for an image), and of which kind they are.
int numComponents(const SubstanceInput& input) {
    return input.getType() & 7;
}

bool holdsIntegers(const SubstanceInput& input) {
    return (input.getType() & 0x20) != 0;
}

// One material of the document. What a user interface would redraw for, it renders for.
class LiveMaterial {
public:
    LiveMaterial(std::string materialName, const kv::vector<char>& bottom, const kv::vector<char>& top)
        : name(std::move(materialName))
        , material(kvSubstance::createSubstance(bottom, top)) {
        if (!material) throw std::runtime_error("the two packages make no material");
        // The material tells of every change of its inputs. The connection ends with either side.
        material->getModifiedSignal().connect(
            kvRTB::FunctionVoidMember<LiveMaterial>(this, &LiveMaterial::changed), connections);
        assign("$resolution", {6, 6}); // previews of 64 x 64
    }

    const std::string& getName() const { return name; }

    void list() const {
        for (const kvString::CString& identifier : material->getInputIds()) {
            const SubstanceInput& input = *material->getInput(identifier);
            std::cout << "  " << identifier.asChar();
            for (int i = 0; i < numComponents(input); ++i)
                std::cout << " " << (holdsIntegers(input) ? input.getValueI(i) : input.getValueF(i));
            std::cout << "\n";
        }
    }

    void assign(const std::string& identifier, const std::vector<float>& values) {
        SubstanceInput* const input = material->getInput(identifier.c_str());
        if (!input || numComponents(*input) != static_cast<int>(values.size()) || values.empty())
            throw std::runtime_error("\"" + identifier + "\" is no input with as many numbers");
        for (size_t i = 0; i < values.size(); ++i)
            if (holdsIntegers(*input))
                input->setValueI(static_cast<int>(values[i]), static_cast<int>(i));
            else
                input->setValueF(values[i], static_cast<int>(i));
        kvSubstance::syncValueFromSubstanceInputToInputInstanceBase(material, input);
    }

    // Renders when there is a reason to, and shows the texture: a user interface would, here its mean stands
    // for it.
    void refresh() {
        if (!isStale) return;
        const kv::TempReference<ilSIDImage> texture = kvSubstance::getTextureFromSubstance(material.get());
        if (!texture) throw std::runtime_error("\"" + name + "\" has no texture");
        isStale = false;
        const ilSize size = texture->getSize();
        const unsigned char* const pixels = texture->getBytes();
        const size_t numPixels = static_cast<size_t>(size.x) * static_cast<size_t>(size.y);
        std::array<size_t, 3> sums{};
        for (size_t i = 0; i < numPixels; ++i)
            for (size_t channel = 0; channel < sums.size(); ++channel)
                sums[channel] += pixels[4 * i + channel];
        std::cout << name << ": rendered " << size.x << " x " << size.y << ", mean colour";
        for (const size_t sum : sums) std::cout << " " << sum / numPixels;
        std::cout << "\n";
    }

    kvString::CString getState() const { return material->getStateString(); }

    // Goes through the ordinary setters, so that the listener hears of what changes, and reaches the engine's
    // side.
    void restore(const std::string& state) {
        material->applyStateString(kvString::CString(state.data(), state.size()));
    }

private:
    void changed() { isStale = true; }

    std::string name;
    kv::Reference<Substance> material;
    kvRTB::SignalBase connections;
    bool isStale = true;
};

// Each state with its length before it: a host puts the text wherever its documents hold text.
void save(const std::vector<LiveMaterial*>& materials, const std::string& path) {
    std::ofstream file(path, std::ios::binary);
    for (const LiveMaterial* const material : materials) {
        const kvString::CString state = material->getState();
        file << state.length() << "\n";
        file.write(state.asChar(), static_cast<std::streamsize>(state.length()));
    }
    if (!file.flush()) throw std::runtime_error(path + " cannot be written");
}

void open(const std::vector<LiveMaterial*>& materials, const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::vector<std::string> states;
    for (size_t length = 0; file >> length && file.get() == '\n';) {
        std::string state(length, '\0');
        if (!file.read(state.data(), static_cast<std::streamsize>(length))) break;
        states.push_back(std::move(state));
    }
    if (states.size() != materials.size()) throw std::runtime_error(path + " is no document");
    for (size_t i = 0; i < states.size(); ++i) materials[i]->restore(states[i]);
}

LiveMaterial& find(const std::vector<LiveMaterial*>& materials, const std::string& name) {
    const auto found = std::find_if(materials.begin(), materials.end(),
                                    [&](const LiveMaterial* each) { return each->getName() == name; });
    if (found == materials.end()) throw std::runtime_error("there is no material \"" + name + "\"");
    return **found;
}

void execute(const std::vector<LiveMaterial*>& materials, const std::string& line) {
    std::istringstream words(line);
    std::string command, argument;
    words >> command >> argument;
    if (command == "list") {
        find(materials, argument).list();
    } else if (command == "set") {
        std::string identifier;
        words >> identifier;
        find(materials, argument).assign(identifier, {std::istream_iterator<float>(words), {}});
    } else if (command == "save") {
        save(materials, argument);
    } else if (command == "open") {
        open(materials, argument);
    } else {
        throw std::runtime_error("\"" + command + "\" is no command; there are list, set, save and open");
    }
}

// False when something could not be done; the document is as before then.
bool report(const std::exception& error) {
    std::cerr << "error: " << error.what() << "\n";
    return false;
}

bool run(const char* bottomPath, const char* topPath) {
    const kv::vector<char> bottom = load(bottomPath);
    const kv::vector<char> top = load(topPath);
    LiveMaterial left("left", bottom, top);
    LiveMaterial right("right", bottom, top);
    const std::vector<LiveMaterial*> materials = {&left, &right};
    bool isFine = true;
    std::string line;
    do {
        try {
            if (!line.empty()) execute(materials, line);
            for (LiveMaterial* const material : materials) material->refresh();
        } catch (const std::exception& error) {
            isFine = report(error);
        }
    } while (std::getline(std::cin, line));
    return isFine;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: live_host bottom.kvpkg top.kvpkg\n";
        return 2;
    }
    try {
        return run(argv[1], argv[2]) ? 0 : 1;
    } catch (const std::exception& error) {
        report(error);
        return 1;
    }
}
