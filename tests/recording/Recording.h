// A double of the linker and of the engine: it writes down every call as a line of text, in order, answers
// as scripted, and watches who owns what.
//
// A line reads
//     worker: substanceHandlePushSetInput(handle1, 0, 2:bricks.tint, Float3, 0.5,0.25,1, 0) = 7
// with the thread ("host" is the thread that called reset(), "engine" a thread of this double, "worker" any
// other), the arguments, and the status unless it is 0. Objects are numbered by their first mention since
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

#include <string>
#include <vector>

namespace recording {

// Forgets the trace, the names and the script. The calling thread becomes "host".
void reset();

// The lines recorded since the last call, each with a line feed at its end.
std::string takeTrace();

// From now on every line is also printed to standard error, up to the very end of the process.
void echoToStandardError();

// ---- Ownership

// Objects that are alive, and every misuse so far (second release, use after release, a foreign buffer, an
// engine context released before its handles), one a line. Empty when all is well at the end.
std::string leaks();
std::string misuses();
unsigned int liveTextures(); // buffers handed out and not freed

// ---- Packages

// The first of so many uids that nobody in this process was given before.
unsigned int freshUids(unsigned int count);

// A package that the linker takes apart into this description and an assembly that the trace shows as
// "assembly:TAG". Bytes of any other kind cannot be read.
std::string packageBytes(const std::string& descriptionXml, const std::string& tag);

// What a push delivers, in order; the default is { Text, Bytes }.
enum class Delivery { Text, Bytes, NullText, NullBytes };
void setDeliveries(const std::vector<Delivery>& deliveries);

// ---- Script of the engine

// The call'th call from now of the function returns the status and does nothing else, but for out-parameters
// set to null and zero. A failing push of a package delivers nothing readable.
void fail(const std::string& function, unsigned int call = 1, unsigned int status = 7);

struct EngineInput {
    unsigned int uid;
    int type;
};
struct EngineOutput {
    unsigned int uid;
    int format;
    unsigned int mipmaps;
};

// What handles made from now on have for inputs and outputs. By default it follows from the descriptions of
// the pushed packages, in their order, less the inputs that connections feed or fusions join.
void setEngineDescription(const std::vector<EngineInput>& inputs, const std::vector<EngineOutput>& outputs);

enum class Caller { StartingThread, OneThread, ThreadEach };
struct Completions {
    Caller caller = Caller::StartingThread;
    bool reversed = false;               // else in the order of the pushes
    unsigned int repeats = 1;            // how often each is reported
    std::vector<unsigned int> unasked{}; // uids reported too, with the first pushed job's user data
    unsigned int limit = ~0u;            // after so many reports the start fails
};
void setCompletions(const Completions& completions);

// What finished textures look like. The pixels of the default change with every value pushed.
struct Texture {
    unsigned short width = 4;
    unsigned short height = 2;
    int format = -1; // -1: as the package says
    bool hasBuffer = true;
    std::vector<unsigned char> pixels = {}; // repeated to fill the buffer
};
void setTexture(const Texture& texture);

// The next start waits, before its first callback, until it is released.
void blockNextStart();
void waitForBlockedStart();
void releaseStart();

} // namespace recording
