#include "tests/faults/AllocationLoop.h"

#include "tests/FailingAllocations.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <new>

#include <execinfo.h>

namespace faults {

namespace {

using allocations::Failing;

// Where TinyXML 2.6.2 lets go of memory when another allocation fails behind it. It holds what it reads by a
// plain pointer until that is read whole; nothing outside of it can reach the memory.
struct XmlLeak {
    const char* function; // which allocates the block
    const char* symbol;   // its name in the library
    const char* block;
};
constexpr XmlLeak xmlLeaks[] = {
    {"TiXmlNode::Identify", "N9TiXmlNode8IdentifyE", "a child that is being read, with all that is inside"},
    {"TiXmlElement::ReadValue", "N12TiXmlElement9ReadValueE", "a text that is being read"},
    {"TiXmlElement::Parse", "N12TiXmlElement5ParseE", "an attribute that is being read"},
};

thread_local int ownScopes = 0;
bool (*isExemptElsewhere)() = nullptr;

// What the trials themselves allocate does not count.
struct Own {
    Own() { ++ownScopes; }
    Own(const Own&) = delete;
    Own& operator=(const Own&) = delete;
    ~Own() { --ownScopes; }
};

bool isExempt() {
    return ownScopes > 0 || (isExemptElsewhere && isExemptElsewhere());
}

std::atomic<const char*> currentName{""};
std::atomic<long> currentNumber{-1};

[[noreturn]] void onTerminate() {
    std::fprintf(stderr, "%s ends the process, with allocation %ld failing\n", currentName.load(),
                 currentNumber.load());
    std::abort();
}

struct Trial {
    std::string before, after, next, probed;
    bool hasThrown = false;
    long failed = 0;
    long growth = 0;                        // blocks that are left
    std::vector<allocations::Stack> stacks; // of those left from the operation, when traced
};

void actWithFailure(const Scene& scene, Trial& trial, long number, Failing how) {
    allocations::fail(number, how);
    try {
        scene.act();
    } catch (const std::bad_alloc&) {
        trial.hasThrown = true;
    }
    trial.failed = allocations::stopFailing();
}

void lookAt(std::string& text, const std::function<std::string()>& look) {
    const Own own;
    text = look();
}

// Without a failure when the number is negative. What has failed is done again.
Trial attempt(const Operation& operation, long number, Failing how, const Trial* expected, bool isTraced) {
    Trial trial;
    currentNumber = number;
    const long alive = allocations::alive();
    {
        const Scene scene = operation.prepare();
        lookAt(trial.before, scene.look);
        if (isTraced) allocations::startTracing();
        if (number < 0)
            scene.act();
        else
            actWithFailure(scene, trial, number, how);
        allocations::stopTracing();
        lookAt(trial.after, scene.look);
        if (expected && trial.after != expected->after) scene.act();
        lookAt(trial.next, scene.look);
        const std::string probed = scene.probe();
        lookAt(trial.probed, [&probed] { return probed; });
    }
    trial.growth = allocations::alive() - alive;
    const Own own;
    if (isTraced) trial.stacks = allocations::tracedAlive();
    return trial;
}

// The second time, when what a process makes but once is there.
Trial attemptWithoutFailure(const Operation& operation) {
    attempt(operation, -1, Failing::Once, nullptr, false);
    return attempt(operation, -1, Failing::Once, nullptr, false);
}

// The library and the function that the address is in.
const std::string& describe(void* address) {
    static std::map<void*, std::string> known; // looking up takes long
    std::string& text = known[address];
    if (text.empty()) {
        char** const symbols = backtrace_symbols(&address, 1);
        text = symbols ? symbols[0] : "?";
        std::free(symbols);
    }
    return text;
}

// The place in the table that explains a block that is left; empty when nothing does. What TinyXML's strings
// hold belongs to the node or attribute that they are in, which is in the list itself.
std::string explain(const allocations::Stack& stack) {
    const auto isXml = [](void* address) {
        return describe(address).find("libtinyxml") != std::string::npos;
    };
    if (std::none_of(stack.begin(), stack.end(), isXml)) return {};
    if (!isXml(stack.front())) return "what these hold";
    for (const XmlLeak& leak : xmlLeaks)
        if (describe(stack.front()).find(leak.symbol) != std::string::npos)
            return std::string(leak.function) + ", " + leak.block;
    return {};
}

std::string toText(const allocations::Stack& stack) {
    std::string text = "left:\n";
    for (void* const address : stack) text += "    " + describe(address) + "\n";
    return text;
}

class Loop {
public:
    explicit Loop(const Operation& tried)
        : operation(tried)
        , expected(attemptWithoutFailure(tried)) {}

    void run(Failing how) {
        for (long number = 0;; ++number) {
            const Trial trial = attempt(operation, number, how, &expected, false);
            const bool isExplained =
                trial.growth == expected.growth || !operation.counts || explains(number, how, trial.growth);
            const Own own;
            SCOPED_TRACE(number);
            check(trial);
            EXPECT_TRUE(isExplained) << trial.growth - expected.growth << " blocks more\n" << unexplained;
            failed += trial.failed > 0;
            if (trial.failed == 0 || testing::Test::HasFailure()) return;
        }
    }

    long takeFailed() { return std::exchange(failed, 0); }
    const std::map<std::string, long>& explained() const { return leaks; }

private:
    void check(const Trial& trial) const {
        const bool isUnchanged = trial.after == trial.before;
        const bool isDone = trial.after == expected.after;
        if (trial.failed == 0)
            EXPECT_TRUE(isDone && !trial.hasThrown) << trial.after;
        else if (trial.hasThrown)
            EXPECT_TRUE(isUnchanged || operation.promise == Promise::Basic) << trial.after;
        else
            EXPECT_TRUE(isDone || (isUnchanged && operation.promise == Promise::Silent)) << trial.after;
        EXPECT_EQ(trial.next, expected.after);
        EXPECT_EQ(trial.probed, expected.probed);
    }

    // Whether the blocks that a trial leaves are TinyXML's. It is done again to see, with its neighbours if
    // need be: a list of the process that happened to grow in the trial does not grow again.
    bool explains(long number, Failing how, long growth) {
        for (const long shift : {0, -1, 1}) {
            const Trial again = attempt(operation, number + shift, how, &expected, true);
            const Own own;
            if (again.growth == growth) return explains(again);
        }
        return false;
    }

    bool explains(const Trial& traced) {
        long more = traced.growth - expected.growth;
        unexplained.clear();
        for (const auto& stack : traced.stacks) {
            const std::string reason = explain(stack);
            if (reason.empty()) {
                unexplained += toText(stack); // some stay for good reasons
            } else {
                ++leaks[reason];
                --more;
            }
        }
        return more == 0;
    }

    const Operation& operation;
    const Trial expected;
    long failed = 0;
    std::map<std::string, long> leaks; // blocks, by what explains them
    std::string unexplained;           // stacks of the last trial that left more than expected
};

} // namespace

// For the leak sanitizer, by the name that it asks for.
extern "C" __attribute__((visibility("default"))) const char*
__lsan_default_suppressions() { // NOLINT(bugprone-reserved-identifier)
    static const std::string text = [] {
        std::string lines;
        for (const XmlLeak& leak : xmlLeaks) lines += std::string("leak:") + leak.function + "\n";
        return lines;
    }();
    return text.c_str();
}

void failEveryAllocation(const Operation& operation, bool (*isExemptToo)()) {
    isExemptElsewhere = isExemptToo;
    allocations::exempt(&isExempt);
    currentName = operation.name;
    std::set_terminate(&onTerminate);
    Loop loop(operation);
    for (const Failing how : {Failing::Once, Failing::FromThere}) {
        loop.run(how);
        const char* const mode = how == Failing::Once ? "once" : "onwards";
        const long failed = loop.takeFailed();
        std::printf("    %-40s %-14s %5ld allocations failed\n", operation.name, mode, failed);
        testing::Test::RecordProperty(mode, std::to_string(failed));
    }
    for (const auto& [reason, blocks] : loop.explained())
        std::printf("        left by TinyXML: %ld blocks, %s\n", blocks, reason.c_str());
}

} // namespace faults
