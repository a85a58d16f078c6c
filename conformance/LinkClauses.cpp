#include "conformance/Clauses.h"
#include "conformance/Findings.h"

#include <algorithm>
#include <limits>

namespace kvSubstance::conformance {

namespace {

void emptyHandle(Trial& trial) {
    Linking(trial.linker).expectNoLink("with nothing pushed");
}

void result(Trial& trial) {
    const Part& part = trial.bottom();
    Linking linking(trial.linker);
    linking.push(part.package);
    const unsigned char* data = nullptr;
    size_t size = 0;
    expectSuccess(trial.linker.link(linking.handle(), &data, &size), "substanceLinkerHandleLink");
    const std::string before(data, data + size);
    trial.linker.setOutputFormat(linking.handle(), part.description.outputs.at(0).uid, SubstanceFormatSrgb,
                                 3);
    static_cast<void>(linking.link());
    linking.push(trial.parts().front()->assembly);
    static_cast<void>(linking.link());
    expect(std::equal(before.begin(), before.end(), data,
                      [](char a, unsigned char b) { return static_cast<unsigned char>(a) == b; }),
           "linked bytes that stay while their handle lives", "others");
}

void handles(Trial& trial) {
    const Part& part = trial.bottom();
    Linking linking(trial.linker);
    const auto linkSecond = [&](SubstanceLinkerHandle* handle, int format) {
        expectSuccess(trial.linker.push(handle, part.package.data(), part.package.size()), "a push");
        trial.linker.setOutputFormat(handle, part.description.outputs.at(0).uid, format, 1);
        const unsigned char* data = nullptr;
        size_t size = 0;
        expectSuccess(trial.linker.link(handle, &data, &size), "linking one of two handles of a context");
        return std::string(data, data + size);
    };
    const auto formatOf = [&](const std::string& assembly) {
        const auto running = trial.run(assembly);
        return running->handle.outputs()[running->handle.outputIndex(part.description.outputs[0].uid)].format;
    };
    SubstanceLinkerHandle* const second = linking.newHandle();
    const std::string linear = linkSecond(linking.handle(), SubstanceFormatRgba8);
    const std::string srgb = linkSecond(second, SubstanceFormatSrgb);
    expectSuccess(trial.linker.handleRelease(second), "substanceLinkerHandleRelease");
    expect(formatOf(linear) == SubstanceFormatRgba8, "the format set in the first handle, 0",
           formatOf(linear));
    expect(formatOf(srgb) == SubstanceFormatSrgb, "the format set in the second handle, 32", formatOf(srgb));
    expect(linking.link() == linear, "the first handle to link as before when the second is gone",
           "otherwise");
}

void contextRelease(Trial& trial) {
    SubstanceLinkerContext* context = nullptr;
    SubstanceLinkerHandle* handle = nullptr;
    expectSuccess(trial.linker.contextInit(&context, SubstanceLinkerApiVersion, SubstanceLinkerEngineId),
                  "substanceLinkerContextInit");
    expectSuccess(trial.linker.handleInit(&handle, context), "substanceLinkerHandleInit");
    const std::string& package = trial.bottom().package;
    expectSuccess(trial.linker.push(handle, package.data(), package.size()), "a push");
    expectSuccess(trial.linker.contextRelease(context),
                  "substanceLinkerContextRelease with a handle that was not released");
}

// ---- Formats

void format(Trial& trial) {
    const Part& part = trial.bottom();
    const unsigned int uid = part.description.outputs.at(0).uid;
    for (const int wanted : {int(SubstanceFormatRgba8), int(SubstanceFormatSrgb)}) {
        const auto running = trial.run(trial.link({&part}, [&](SubstanceLinkerHandle* handle) {
            expectSuccess(trial.linker.setOutputFormat(handle, uid, wanted, 1),
                          "substanceLinkerHandleSetOutputFormat");
        }));
        const auto told = running->handle.outputs()[running->handle.outputIndex(uid)].format;
        expect(told == wanted, "the output's descriptor to have the linked format", told);
        const int delivered = running->handle.render(uid).format;
        expect(delivered == wanted, "a texture in the linked format", delivered);
    }
}

void mipmaps(Trial& trial) {
    const Part& part = trial.bottom();
    const unsigned int uid = part.description.outputs.at(0).uid;
    std::string fullSize;
    for (const unsigned int wanted : {1u, 0u, 3u}) {
        const auto running = trial.run(trial.link({&part}, [&](SubstanceLinkerHandle* handle) {
            trial.linker.setOutputFormat(handle, uid, SubstanceFormatRgba8, wanted);
        }));
        const Picture picture = running->handle.render(uid);
        if (picture.width < 4 && picture.height < 4) throw NotJudged{"the textures are too small for levels"};
        expect(picture.levels == std::max(wanted, 1u), "as many levels as were linked, one for 0",
               picture.levels);
        if (fullSize.empty()) fullSize = picture.pixels;
        expect(picture.pixels.compare(0, fullSize.size(), fullSize) == 0, "the full-size level first",
               "other bytes");
        // What is smaller lies between the darkest and the brightest of the full size.
        for (std::size_t channel = 0; channel < 4; ++channel) {
            const auto at = [&](std::size_t i) { return static_cast<unsigned char>(picture.pixels[i]); };
            int lowest = 255, highest = 0;
            for (std::size_t i = channel; i < picture.pixels.size(); i += 4) {
                if (i < fullSize.size()) {
                    lowest = std::min<int>(lowest, at(i));
                    highest = std::max<int>(highest, at(i));
                }
                expect(at(i) + 1 >= lowest && at(i) <= highest + 1, "levels made of the full size", at(i));
            }
        }
    }
}

void formatRefusals(Trial& trial) {
    const Part& part = trial.bottom();
    const unsigned int uid = part.description.outputs.at(0).uid;
    const Picture expected = trial.run(trial.link({&part}))->handle.render(uid);
    const auto running = trial.run(trial.link({&part}, [&](SubstanceLinkerHandle* handle) {
        unsigned int unknown = 1;
        const auto& outputs = part.description.outputs;
        while (std::any_of(outputs.begin(), outputs.end(),
                           [&](const Port& output) { return output.uid == unknown; }))
            ++unknown;
        expectRefusal(trial.linker.setOutputFormat(handle, unknown, SubstanceFormatRgba8, 2),
                      "a format for an unknown output");
        for (const int lacking : {-1, std::numeric_limits<int>::max()})
            expectRefusal(trial.linker.setOutputFormat(handle, uid, lacking, 2),
                          "a format that no engine has");
    }));
    expect(running->handle.render(uid) == expected, "a refused format to change nothing", "another texture");
}

} // namespace

std::vector<Entry> linkClauses() {
    return {
        {{"empty-link", "A handle into which nothing was pushed does not link."}, emptyHandle},
        {{"link-result", "Linked bytes stay as they are until their handle is released."}, result},
        {{"linker-handles", "Handles of one linker context know nothing of each other."}, handles},
        {{"linker-context-release", "A linker context that ends takes its handles with it."}, contextRelease},
        {{"format", "An output comes in the format that was linked, and its descriptor says so."}, format},
        {{"mipmaps", "Mipmaps n gives n levels, full size first; 0 and 1 give one."}, mipmaps},
        {{"format-refusals",
          "Formats for unknown outputs, and unknown formats, are refused and change nothing."},
         formatRefusals},
    };
}

} // namespace kvSubstance::conformance
