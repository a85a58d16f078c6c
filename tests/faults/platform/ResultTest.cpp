// Engines that report at odd times, from odd threads, too often, or not what was asked for. What an engine
// may not do, for nobody could tell it from a good one: hand back a job that it was not given (but null),
// name an output of another handle, or report after its start has returned.
#include "tests/recording/Host.h"
#include "tests/recording/RecordingState.h"

#include <thread>
#include <vector>

namespace recording {

namespace {

// What the request with the odd start gives. A picture that was kept comes with the next request, or, where
// the engine cannot do better, with the next change.
enum class Outcome { New, Kept, KeptUntilEdited };

constexpr unsigned int unknown = 99;

struct OddStart {
    const char* name;
    Outcome outcome;
    std::vector<unsigned int> outputs; // that are reported, in this order, each from a thread of its own
    unsigned int status = 0;
    enum { InOrder, AtOnce, ForNobody, Recomputed } how = InOrder;
    Texture texture = {200, 1, -1, true, {}};

    unsigned int operator()(const Start& start) const {
        std::vector<std::thread> threads;
        for (const unsigned int output : outputs) {
            const Report report{output, how == ForNobody ? nullptr : start.reports.front().job};
            if (how == Recomputed) start.handle->computed.emplace(output, "again"); // when it was fetched
            threads.emplace_back([&start, report] { start.report(report); });
            if (how != AtOnce) threads.back().join();
        }
        for (std::thread& thread : threads)
            if (thread.joinable()) thread.join();
        return status;
    }
};

const OddStart oddStarts[] = {
    {"in reverse, each four times, at once", Outcome::New, {3, 2, 3, 2, 3, 2, 3, 2}, 0, OddStart::AtOnce},
    {"again, with another texture", Outcome::New, {2, 3, 2, 3}, 0, OddStart::Recomputed},
    {"an unknown one as well", Outcome::New, {unknown, 2, 3, unknown}},
    {"nothing but an unknown one", Outcome::Kept, {unknown}},
    {"what was not asked for", Outcome::New, {0, 1, 2, 3}},
    {"for nobody", Outcome::Kept, {2, 3}, 0, OddStart::ForNobody},
    {"nothing", Outcome::Kept, {}},
    {"not the one that shows", Outcome::Kept, {2}},
    {"everything, and that it failed", Outcome::New, {2, 3}, 7},
    {"half of it, and that it failed", Outcome::Kept, {2}, 7},
    {"nothing, and that it failed", Outcome::Kept, {}, 7},
    {"no buffers", Outcome::Kept, {2, 3}, 0, OddStart::InOrder, {200, 1, -1, false, {}}},
    {"no columns", Outcome::Kept, {2, 3}, 0, OddStart::InOrder, {0, 8, -1, true, {}}},
    {"no rows", Outcome::Kept, {2, 3}, 0, OddStart::InOrder, {8, 0, -1, true, {}}},
    {"another size", Outcome::New, {2, 3}, 0, OddStart::InOrder, {65535, 2, -1, true, {}}},
    {"another format", Outcome::KeptUntilEdited, {2, 3}, 0, OddStart::InOrder, {200, 1, 16, true, {}}},
};

} // namespace

TEST_F(HostTest, ReportsMayComeInAnyWayOrNotAtAll) {
    const auto material = loadMaterial();
    int value = 1;
    std::string before = render(material);
    for (const OddStart& odd : oddStarts) {
        SCOPED_TRACE(odd.name);
        setValue(material, "scale", ++value);
        setTexture(odd.texture);
        onNextStart(odd);
        EXPECT_EQ(render(material), odd.outcome == Outcome::New ? pictureOf(3, value) : before);

        setTexture({200, 1, -1, true, {}});
        EXPECT_EQ(render(material), odd.outcome == Outcome::KeptUntilEdited ? before : pictureOf(3, value));
        EXPECT_TRUE(isUpToDate(material));
        EXPECT_EQ(liveTextures(), 0u);
        setValue(material, "scale", ++value); // not behind one that came too often
        before = render(material);
        EXPECT_EQ(before, pictureOf(3, value));
    }
}

} // namespace recording
