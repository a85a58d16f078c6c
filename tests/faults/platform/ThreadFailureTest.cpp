// There is no thread to be had, for the render thread or for those of the embedded engine.
#include "framework/render/ProcessObjects.h"
#include "tests/Compiled.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <dlfcn.h>
#include <pthread.h>
#include <string>

namespace {

std::atomic<int> created{0};
std::atomic<int> firstFailure{0}; // counted from 1; 0 is never
std::atomic<bool> isLasting{false};

} // namespace

// Takes the place of the C library's, for the shared libraries too.
extern "C" __attribute__((visibility("default"))) decltype(pthread_create) pthread_create;

extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*function)(void*),
                              void* argument) noexcept {
    static const auto create =
        reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
    const int number = ++created;
    if (firstFailure > 0 && (number == firstFailure || (isLasting && number > firstFailure))) return EAGAIN;
    return create(thread, attributes, function, argument);
}

namespace faults {

namespace {

// Large enough that the engine shares the work among threads.
kv::vector<char> package(const std::string& url) {
    return hosting::compile("<package><graph url=\"pkg://" + url + R"(">
        <input identifier="$resolution" type="integer2" default="9,10"/>
        <input identifier=")" +
                            url + R"(_level" type="float" default="0" min="0" max="1"/>
        <node name="gray" kind="uniform" value="{)" +
                            url + R"(_level}"/><output identifier="Output" node="gray"/>
        </graph></package>)");
}

void failFrom(int number, bool lasting) {
    created = 0;
    isLasting = lasting;
    firstFailure = number;
}

} // namespace

TEST(Threads, MayBeRefusedAtAnyTime) {
    int failed = 0;
    for (const bool lasting : {false, true}) {
        for (int number = 1; number <= 3; ++number) {
            SCOPED_TRACE("thread " + std::to_string(number) + (lasting ? " and those behind it" : ""));
            SubstanceAir::processObjects()->renderer.reset(); // a new one, and a new engine
            const auto material = kvSubstance::createSubstance(package("bottom"), package("top"));
            hosting::Image image;
            for (const float level : {0.0f, 1.0f, 0.0f}) {
                hosting::setValue(material, "top_level", level);
                failFrom(number, lasting);
                if (number == 1) { // the render thread
                    EXPECT_THROW(hosting::render(material), boost::thread_resource_error);
                    EXPECT_EQ(material->getCachedTexture().get(), image.get());
                    failFrom(0, false);
                }
                image = hosting::render(material);
                failed += created >= number && number > 1;
                failFrom(0, false);
                ASSERT_TRUE(image);
                EXPECT_EQ(image->getBytes()[0], static_cast<int>(255 * level));
            }
        }
    }
    EXPECT_GT(failed, 0);
}

} // namespace faults
