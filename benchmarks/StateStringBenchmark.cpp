// Writing a material's values as a state string, and applying one in which every value differs from the
// material's.
//
// Floors use the standard library's conversions, the fastest that the toolchain has, over plain arrays with
// room for everything: std::to_chars (fixed, six decimals) writes the same text, byte for byte;
// std::from_chars reads the same numbers, uids included, and steps over the letters and blanks whose places
// it knows.
//
// To apply a state is more than to parse it: each line goes through the input's setter, which calls the base
// library's signals, and is synchronised with the graph.
#include "benchmarks/LibraryBenchmarks.h"
#include "benchmarks/MaterialScene.h"

#include <benchmark/benchmark.h>

#include <charconv>
#include <cstring>
#include <memory>
#include <stdexcept>

namespace benchmarks {

namespace {

union Number {
    int i;
    float f;
};

struct PlainInput {
    unsigned int uid = 0;
    bool holdsInts = false;
    int count = 0;
    Number numbers[4] = {};
};

constexpr const char* Header = "pkg://benchmark\n";

std::vector<PlainInput> plainInputs(const MaterialScene& scene) {
    std::vector<PlainInput> plain;
    plain.reserve(scene.inputs.size());
    for (const kvSubstance::SubstanceInput* const input : scene.inputs) {
        PlainInput item{input->getUID(), (input->getType() & 0x20) != 0, input->getType() & 7, {}};
        for (int k = 0; k < item.count; ++k) {
            if (item.holdsInts)
                item.numbers[k].i = input->getValueI(k);
            else
                item.numbers[k].f = input->getValueF(k);
        }
        plain.push_back(item);
    }
    return plain;
}

// Writes at the place and returns the end.
char* writePlain(const std::vector<PlainInput>& inputs, char* place, char* const end) {
    place = std::strcpy(place, Header) + std::strlen(Header);
    for (const PlainInput& input : inputs) {
        place = std::to_chars(place, end, input.uid).ptr;
        *place++ = 'd';
        *place++ = ' ';
        *place++ = input.holdsInts ? 'i' : 'f';
        *place++ = static_cast<char>('0' + input.count);
        for (int k = 0; k < input.count; ++k) {
            *place++ = ' ';
            place = input.holdsInts
                        ? std::to_chars(place, end, input.numbers[k].i).ptr
                        : std::to_chars(place, end, input.numbers[k].f, std::chars_format::fixed, 6).ptr;
        }
        *place++ = '\n';
    }
    return place;
}

void readPlain(std::vector<PlainInput>& inputs, const char* place, const char* const end) {
    place += std::strlen(Header);
    for (PlainInput& input : inputs) {
        place = std::from_chars(place, end, input.uid).ptr + std::strlen("d f1");
        for (int k = 0; k < input.count; ++k) {
            ++place;
            place = input.holdsInts ? std::from_chars(place, end, input.numbers[k].i).ptr
                                    : std::from_chars(place, end, input.numbers[k].f).ptr;
        }
        ++place;
    }
}

std::shared_ptr<MaterialScene> editedScene(int inputs) {
    auto scene = std::make_shared<MaterialScene>(inputs);
    scene->edit(1);
    return scene;
}

Piece writeState(int inputs) {
    return {[scene = editedScene(inputs)] { benchmark::DoNotOptimize(scene->material->getStateString()); },
            {}};
}

Piece formatNumbers(int inputs) {
    const auto scene = editedScene(inputs);
    const kvString::CString expected = scene->material->getStateString();
    std::string text(expected.length() + 100, '\0');
    const std::vector<PlainInput> plain = plainInputs(*scene);
    char* const end = writePlain(plain, text.data(), text.data() + text.size());
    if (std::string(text.data(), end) != expected.asChar()) throw std::runtime_error("the texts differ");
    return {[plain, text]() mutable {
                benchmark::DoNotOptimize(writePlain(plain, text.data(), text.data() + text.size()));
                benchmark::ClobberMemory();
            },
            {}};
}

Piece applyState(int inputs) {
    const auto scene = editedScene(inputs);
    std::vector<kvString::CString> states;
    for (const int seed : {1, 2}) {
        scene->edit(seed);
        states.push_back(scene->material->getStateString());
        scene->edit(0);
        scene->material->applyStateString(states.back());
        if (scene->material->getStateString() != states.back()) throw std::runtime_error("the values differ");
    }
    return {[scene, states, turn = std::size_t{0}]() mutable {
                scene->material->applyStateString(states[turn++ % 2]);
            },
            {}};
}

Piece parseNumbers(int inputs) {
    const auto scene = editedScene(inputs);
    std::vector<PlainInput> plain = plainInputs(*scene);
    for (PlainInput& input : plain) input.uid = 0;
    const kvString::CString text = scene->material->getStateString();
    readPlain(plain, text.asChar(), text.asChar() + text.length());
    if (plain.back().uid != scene->inputs.back()->getUID()) throw std::runtime_error("the text was not read");
    return {[plain, text]() mutable {
                readPlain(plain, text.asChar(), text.asChar() + text.length());
                benchmark::DoNotOptimize(plain.data());
                benchmark::ClobberMemory();
            },
            {}};
}

// One after the other.
Piece both(const Piece& first, const Piece& second) {
    return {[first, second] {
                first.run();
                second.run();
            },
            {}};
}

Piece writeAndApply(int inputs) {
    return both(writeState(inputs), applyState(inputs));
}

Piece formatAndParse(int inputs) {
    return both(formatNumbers(inputs), parseNumbers(inputs));
}

} // namespace

void addStateString() {
    add({"write the state string", "inputs", {2000, 20000}, writeState, formatNumbers, 2});
    add({"apply a state string", "inputs", {2000, 20000}, applyState, parseNumbers});
    add({"write and apply a state string", "inputs", {2000}, writeAndApply, formatAndParse, 2});
    // For information: twenty thousand inputs are more than the caches hold, and the floors' few bytes are
    // not.
    add({"write and apply a state string", "inputs", {20000}, writeAndApply, formatAndParse});
}

} // namespace benchmarks
