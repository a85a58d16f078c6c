#include "tests/faults/AllocationLoop.h"

#include "tests/FailingAllocations.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <limits>
#include <new>

// TinyXML 2.6.2 lets go of what it is reading when memory runs out: it holds that by a plain pointer until it
// is read whole. For the leak sanitizer, by the name that it asks for.
extern "C" __attribute__((visibility("default"))) const char*
__lsan_default_suppressions() { // NOLINT(bugprone-reserved-identifier)
    return "leak:TiXmlNode::Identify\nleak:TiXmlElement::ReadValue\nleak:TiXmlElement::Parse\n";
}

namespace faults {

namespace {

using allocations::Failing;

constexpr long none = std::numeric_limits<long>::max();

bool (*isExemptElsewhere)() = nullptr;
thread_local bool isLooking = false;

bool isExempt() {
    return isLooking || (isExemptElsewhere && isExemptElsewhere());
}

std::string look(const Scene& scene) {
    isLooking = true;
    std::string text = scene.look();
    isLooking = false;
    return text;
}

struct Trial {
    std::string before, after, next, probed;
    bool hasThrown = false;
    long failed = 0;
    long growth = 0; // blocks that are left
};

// What has failed, to judge by what is expected, is done again.
Trial attempt(const Operation& operation, long number, Failing how, const Trial* expected) {
    Trial trial;
    const long alive = allocations::alive();
    {
        const Scene scene = operation.prepare();
        trial.before = look(scene);
        allocations::fail(number, how);
        try {
            scene.act();
        } catch (const std::bad_alloc&) {
            trial.hasThrown = true;
        }
        trial.failed = allocations::stopFailing();
        trial.after = look(scene);
        if (expected && trial.after != expected->after) scene.act();
        trial.next = look(scene);
        trial.probed = scene.probe(); // a text that is left, each time
    }
    trial.growth = allocations::alive() - alive;
    return trial;
}

void check(const Operation& operation, const Trial& trial, const Trial& expected) {
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

// How many allocations have failed.
long failEach(const Operation& operation, const Trial& expected, Failing how) {
    for (long number = 0;; ++number) {
        SCOPED_TRACE(number);
        const Trial trial = attempt(operation, number, how, &expected);
        check(operation, trial, expected);
        if (operation.counts && trial.growth != expected.growth) { // a list of the process grows but once
            const Trial again = attempt(operation, number, how, &expected);
            EXPECT_EQ(again.growth, expected.growth) << "blocks are left";
        }
        if (trial.failed == 0 || testing::Test::HasFailure()) return number;
    }
}

} // namespace

void failEveryAllocation(const Operation& operation, bool (*isExemptToo)()) {
    isExemptElsewhere = isExemptToo;
    allocations::exempt(&isExempt);
    attempt(operation, none, Failing::Once, nullptr); // what a process makes but once is there from now on
    const Trial expected = attempt(operation, none, Failing::Once, nullptr);
    for (const Failing how : {Failing::Once, Failing::FromThere}) {
        const char* const mode = how == Failing::Once ? "once" : "onwards";
        const long failed = failEach(operation, expected, how);
        std::printf("    %-40s %-14s %5ld allocations failed\n", operation.name, mode, failed);
        testing::Test::RecordProperty(mode, std::to_string(failed));
    }
}

} // namespace faults
