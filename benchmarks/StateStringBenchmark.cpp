// Writing a material's values as a state string, and applying one in which every value differs from the
// material's.
//
// Floors use the standard library's conversions, the fastest that the toolchain has, over plain arrays with
// room for everything: std::to_chars (fixed, six decimals) writes the same text, byte for byte;
// std::from_chars reads the same numbers, uids included, and steps over the letters and blanks whose places
// it knows.
//
// To apply a state is more than to parse it: each line goes through the input's setter, which calls the base
// library's signals, and is synchronised with the graph. The floor of the row with a target therefore makes
// these calls too, on inputs that it needs not look up. The row beside it shows the parse alone as a floor.
#include "benchmarks/LibraryBenchmarks.h"
#include "benchmarks/MaterialScene.h"
#include "bridge/Synchronisation.h"

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

void set(kvSubstance::SubstanceInput& input, const PlainInput& plain) {
    const auto& n = plain.numbers;
    switch (plain.count) {
    case 2:
        return plain.holdsInts ? input.setValue2I(n[0].i, n[1].i) : input.setValue2F(n[0].f, n[1].f);
    case 3:
        return input.setValue3F(n[0].f, n[1].f, n[2].f);
    case 4:
        return input.setValue4F(n[0].f, n[1].f, n[2].f, n[3].f);
    default:
        return plain.holdsInts ? input.setValueI(n[0].i, 0) : input.setValueF(n[0].f, 0);
    }
}

Piece parseAndSet(int inputs) {
    const auto scene = editedScene(inputs);
    std::vector<kvString::CString> states;
    for (const int seed : {1, 2}) {
        scene->edit(seed);
        states.push_back(scene->material->getStateString());
    }
    return {[scene, states, plain = plainInputs(*scene), turn = std::size_t{0}]() mutable {
                const kvString::CString& text = states[turn++ % 2];
                readPlain(plain, text.asChar(), text.asChar() + text.length());
                for (std::size_t i = 0; i < plain.size(); ++i) {
                    set(*scene->inputs[i], plain[i]);
                    kvSubstance::syncValueFromSubstanceInputToInputInstanceBase(scene->material,
                                                                                scene->inputs[i]);
                }
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

} // namespace

void addStateString() {
    add({"write the state string", "inputs", {2000, 20000}, writeState, formatNumbers, 2});
    add({"apply a state string", "inputs", {2000, 20000}, applyState, parseAndSet, 2});
    add({"apply a state string, beside the parse alone", "inputs", {2000, 20000}, applyState, parseNumbers});
}

} // namespace benchmarks
