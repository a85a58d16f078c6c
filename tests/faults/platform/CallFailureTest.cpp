// Every call of linker and engine fails, once or from there on, while a host loads, renders, edits, loads
// anew and ends: the last texture stays, no edit is lost, and what failed works the next time. Only the
// renderer's linker context is asked for once and never again.
#include "tests/recording/Host.h"

#include <iostream>
#include <map>
#include <sstream>
#include <vector>

namespace recording {

namespace {

// The calls of each function, by the lines of a trace.
std::map<std::string, unsigned int> countCalls(const std::string& trace) {
    std::map<std::string, unsigned int> counts;
    std::istringstream lines(trace);
    for (std::string line; std::getline(lines, line);) {
        const size_t name = line.find(": ") + 2;
        if (line.compare(name, 9, "substance") == 0) ++counts[line.substr(name, line.find('(') - name)];
    }
    return counts;
}

// What has one failure, or all of a function's from one call on.
struct Fault {
    std::string function;
    unsigned int call;
    Failing how;
};

class Session {
public:
    // The pictures of a session in which what fails works the next time, in their order.
    Session(const std::vector<std::string>& good, const Fault& fault)
        : good_(good)
        , fault_(fault) {
        if (fault_.call > 0) fail(fault_.function, fault_.call, fault_.how);
    }

    std::vector<std::string> run() {
        load();
        request();
        editAndRequest("scale", 4);
        request();
        editAndRequest("$seed", 5);
        load();
        request();
        editAndRequest("amount", 2);
        repair();
        request();
        EXPECT_TRUE(isUpToDate(material_));
        edit("scale", 6);
        editAndRequest("$seed", 7);
        request();
        material_.reset();
        SubstanceAir::processObjects()->renderer.reset();
        wasHit();
        return pictures_;
    }

    const std::string& trace() const { return trace_; }

private:
    // Whether anything has failed since it was last asked.
    bool wasHit() {
        const std::string trace = takeTrace();
        trace_ += trace;
        return trace.find(" = 7\n") != std::string::npos;
    }

    // A host cannot see all that goes wrong in a load: a package for which the linker delivers nothing may
    // show the content of the one before it. This one knows, and loads again.
    void load() {
        isSound_ = false;
        for (int attempt = 0; attempt < 2 && !isSound_; ++attempt) {
            material_ = loadMaterial();
            isSound_ = !wasHit();
        }
    }

    void edit(const char* identifier, int value) const {
        if (material_) setValue(material_, identifier, value);
    }

    void editAndRequest(const char* identifier, int value) {
        edit(identifier, value);
        request();
    }

    void request() {
        const auto cached = material_ ? material_->getCachedTexture() : nullptr;
        const std::string shown = material_ ? render(material_) : "none";
        pictures_.push_back(shown);
        const bool isHit = wasHit();
        if (good_.empty() || !isSound_ || shown == good_[pictures_.size() - 1]) return;
        // An input that the engine refuses is left out of what is rendered, and all of it is rendered again.
        if (isHit && fault_.function == "substanceHandlePushSetInput" && !isUpToDate(material_)) return;
        EXPECT_TRUE(isHit) << "nothing failed in it, but it gave " << shown;
        EXPECT_EQ(shown, picture(cached)) << "lost, and not the new one";
    }

    // From here on nothing fails any more, but for what hosts cannot notice.
    void repair() {
        const bool isEnding = fault_.function.find("Release") != std::string::npos ||
                              fault_.function.find("Free") != std::string::npos;
        if (fault_.how == Failing::Once || isEnding) return;
        fail(fault_.function, 0);
        if (isSound_) return;
        load();
        edit("amount", 2);
    }

    const std::vector<std::string> good_;
    const Fault fault_;
    Material material_;
    bool isSound_ = false; // made of the packages that were given
    std::vector<std::string> pictures_;
    std::string trace_;
};

} // namespace

TEST_F(HostTest, EveryCallMayFailOnceOrFromThereOn) {
    Session first({}, {"", 0, Failing::Once});
    const std::vector<std::string> good = first.run();
    const std::map<std::string, unsigned int> counts = countCalls(first.trace());
    ASSERT_EQ(counts.size(), 25u) << "a function that is never called, or an unknown one";
    EXPECT_EQ(good.back(), pictureOf(7, 6, "2"));
    end();

    unsigned int sessions = 0;
    for (const auto& [function, count] : counts)
        for (unsigned int call = 1; call <= 2 * count; ++call, ++sessions) {
            const Fault fault{function, (call + 1) / 2, call % 2 == 1 ? Failing::Once : Failing::FromThere};
            SCOPED_TRACE(function + ", call " + std::to_string(fault.call) +
                         (fault.how == Failing::Once ? "" : " on"));
            begin();
            const bool isForGood = function == "substanceLinkerContextInit" &&
                                   (fault.call == 2 || (fault.call == 1 && fault.how == Failing::FromThere));
            const auto expected = isForGood ? std::vector<std::string>(good.size(), "none") : good;
            Session session(expected, fault);
            EXPECT_EQ(session.run().back(), expected.back());
            const bool isHit = session.trace().find(" = 7\n") != std::string::npos;
            EXPECT_TRUE(isHit || fault.how == Failing::FromThere);
            end();
            if (HasFailure()) return;
        }
    std::cout << sessions / 2 << " calls failed, in " << sessions << " sessions\n";
}

} // namespace recording
