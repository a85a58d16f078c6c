// What a clause is judged with: the functions, the packages, and what can be found out about them.
#pragma once

#include "conformance/Conformance.h"
#include "conformance/Description.h"
#include "conformance/Linking.h"
#include "conformance/Running.h"

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace kvSubstance::conformance {

// A package, taken apart by the linker.
struct Part {
    std::string package;
    std::string assembly;
    std::string text;
    Description description;
};

// An input and a value that show in an output.
struct Edit {
    std::string assembly;
    unsigned int inputUid = 0;
    Value value;
    unsigned int outputUid = 0;
    Picture before, after;
};

// A handle in a context of its own.
struct Running {
    Running(const Interface::Engine& engine, const std::string& assembly,
            const std::set<unsigned int>& resolutionUids)
        : context(engine)
        , handle(engine, context, assembly, resolutionUids) {}
    EngineContext context;
    EngineHandle handle;
};

// Members throw Broken when a call fails that has no reason to, and NotJudged when the packages lack
// something.
class Trial {
public:
    Trial(const Interface& judged, const Packages& packages)
        : linker(judged.linker)
        , engine(judged.engine)
        , packages_(packages) {}

    const Interface::Linker linker;
    const Interface::Engine engine;

    const Part& bottom();
    const Part& top();
    std::vector<const Part*> parts(); // the top first, where there is one

    // Linked, with all outputs 8-bit RGBA of one level. The function may do more to the handle before.
    using Preparation = std::function<void(SubstanceLinkerHandle*)>;
    std::string link(const std::vector<const Part*>& stack, const Preparation& prepare = {});
    // Top over bottom. Not judged when they share uids.
    std::string linkStack(const Preparation& prepare = {});

    std::set<unsigned int> resolutionUids(); // inputs named "$resolution"
    std::unique_ptr<Running> run(const std::string& assembly);
    std::set<unsigned int> inputsOf(const std::string& assembly); // uids

    // The first number, or image, that shows in an output of a package by itself.
    const Edit& numericEdit();
    const Edit& imageEdit();
    std::optional<Edit> findEdit(const Part& part, bool ofImage);
    // A part with two outputs.
    const Part& partWithTwoOutputs();

private:
    Part read(const std::string& package);

    const Packages packages_;
    std::optional<Part> bottom_, top_;
    std::optional<Edit> numericEdit_, imageEdit_;
};

// Two different values for an input of the type, neither a likely default.
std::vector<Value> unusualValues(int type);

inline bool isNumeric(const Port& input) {
    return input.type != SubstanceInputImage && componentCount(input.type) > 0;
}
inline bool isSystem(const Port& input) {
    return !input.identifier.empty() && input.identifier[0] == '$';
}

} // namespace kvSubstance::conformance
