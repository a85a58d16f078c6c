#include "tests/faults/AllocationLoop.h"

#include "support/GuardedXml.h"
#include "tests/FailingAllocations.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <limits>
#include <new>

namespace {

long lostByXml = 0; // blocks

// TinyXML 2.6.2 lets go of what it is reading when memory runs out: it holds that by a plain pointer until it
// is read whole. What is left behind a parse, which owns whatever it has read, was lost there.
template <class Parse>
auto countLost(const Parse& parse) {
    const long before = allocations::alive();
    try {
        return parse();
    } catch (const std::bad_alloc&) {
        lostByXml += allocations::alive() - before;
        throw;
    }
}

} // namespace

// The linker puts these in the place of the library's (CMakeLists.txt).
#define KV_REAL(SYMBOL) __asm__("__real_" SYMBOL)
#define KV_WRAP(SYMBOL) __asm__("__wrap_" SYMBOL)
#define KV_PARSE_TEXT "_ZN7support16parseXmlDocumentEPKc13TiXmlEncoding"
#define KV_PARSE_GUARDED "_ZN7support16parseXmlDocumentERKNS_11GuardedTextE13TiXmlEncoding"
#define KV_PARSE_ELEMENT "_ZN7support15parseXmlElementEPKcR12TiXmlElement"

namespace wrapped {

using Document = std::unique_ptr<TiXmlDocument>;
using support::GuardedText;

Document realText(const char* text, TiXmlEncoding encoding) KV_REAL(KV_PARSE_TEXT);
Document parseText(const char* text, TiXmlEncoding encoding) KV_WRAP(KV_PARSE_TEXT);
Document realGuarded(const GuardedText& text, TiXmlEncoding encoding) KV_REAL(KV_PARSE_GUARDED);
Document parseGuarded(const GuardedText& text, TiXmlEncoding encoding) KV_WRAP(KV_PARSE_GUARDED);
bool realElement(const char* text, TiXmlElement& element) KV_REAL(KV_PARSE_ELEMENT);
bool parseElement(const char* text, TiXmlElement& element) KV_WRAP(KV_PARSE_ELEMENT);

Document parseText(const char* text, TiXmlEncoding encoding) {
    return countLost([&] { return realText(text, encoding); });
}

Document parseGuarded(const GuardedText& text, TiXmlEncoding encoding) {
    return countLost([&] { return realGuarded(text, encoding); });
}

bool parseElement(const char* text, TiXmlElement& element) {
    return countLost([&] {
        try {
            return realElement(text, element);
        } catch (const std::bad_alloc&) {
            element = TiXmlElement(""); // what it has read is not lost
            throw;
        }
    });
}

} // namespace wrapped

// For the leak sanitizer, by the name that it asks for.
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
    long growth = 0; // blocks that are left, but for TinyXML's
};

// What has failed, to judge by what is expected, is done again.
Trial attempt(const Operation& operation, long number, Failing how, const Trial* expected) {
    Trial trial;
    lostByXml = 0;
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
    trial.growth = allocations::alive() - alive - lostByXml;
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
