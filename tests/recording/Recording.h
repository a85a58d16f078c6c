// A double of the linker and of the engine: it writes down every call as a line of text, in order, answers
// as scripted, and watches who owns what.
//
// A line reads
//     worker: substanceHandlePushSetInput(handle1, 0, 2:bricks.tint, Float3, 0.5,0.25,1, 0) = 7
// with the thread ("host" is the thread that called reset(), "worker" any other), the arguments, and the
// status unless it is 0. Objects are numbered by their first mention since
// reset(), jobs since the last start; uids that a pushed package describes are printed as the package's tag
// and the identifier. Callbacks into the library stand between the calls as lines of their own.
//
// Everything here may be called from any thread. The library's renderer lives as long as the process: reset()
// does not touch the objects that it holds, and tests take fresh uids so as to meet none of its old states.
//
// When the process ends, after all destructors of static objects, whatever was not released exactly once is
// printed to standard error and the exit status becomes 1.
#pragma once

#include "platform/engine.h"
#include "tests/Packages.h"

#include <functional>
#include <string>
#include <vector>

namespace recording {

// Forgets the trace, the names and the script. The calling thread becomes "host".
void reset();

// The lines recorded since the last call, each with a line feed at its end.
std::string takeTrace();

// True while the calling thread is inside the double, and not in a callback of the library's.
bool isInsideDouble();

// ---- Ownership

// Every misuse so far, one a line: second release, use after release or while the engine runs, a foreign
// buffer.
std::string misuses();
unsigned int liveTextures(); // buffers handed out and not freed
std::string alive();         // the same and all contexts and handles not released, one a line

// ---- Packages

using packages::freshUids;
using packages::withFreshUids;

// A package that the linker takes apart into this description and an assembly that the trace shows as
// "assembly:TAG". Bytes of any other kind cannot be read.
inline constexpr auto& packageBytes = packages::bytes;

// ---- Script of the engine

// The call'th call from now of the function, or all from that one on until reset(), returns 7 and does
// nothing else, but for out-parameters set to null and zero. A failing push of a package delivers nothing
// readable. What a release or a free was refused for counts as gone all the same: nobody may use it again.
enum class Failing { Once, FromThere };
void fail(const std::string& function, unsigned int call = 1, Failing how = Failing::Once);

// What finished textures look like.
struct Texture {
    unsigned short width = 4;
    unsigned short height = 2;
    int format = -1; // -1: as the package says
    bool hasBuffer = true;
    std::vector<unsigned char> pixels = {0}; // repeated to fill the buffer; none: as text what was computed
};
void setTexture(const Texture& texture);

// A start at the point where it calls back, without any lock held. Reports may come from any thread.
struct Report {
    unsigned int output; // the handle's index
    void* job;           // user data
};
struct Start {
    SubstanceHandle* handle;
    std::vector<Report> reports; // what was asked for, in the order of the pushes

    void report(const Report& finished) const;
    unsigned int reportAll() const; // returns 0
};

// Takes the place of reportAll() in the next start, and returns its status.
void onNextStart(const std::function<unsigned int(const Start&)>& script);

} // namespace recording
