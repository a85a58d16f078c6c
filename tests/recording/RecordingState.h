// What stands behind the recording double: objects, script and trace under one mutex.
#pragma once

#include "platform/linker.h"
#include "tests/recording/Recording.h"

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace recording {

struct EngineInput {
    unsigned int uid;
    int type;
};

struct EngineOutput {
    unsigned int uid;
    int format;
    unsigned int mipmaps;
};

// What follows from the descriptions of the pushed packages, in their order, less the inputs that connections
// feed or fusions join.
struct Program {
    std::vector<EngineInput> inputs;
    std::vector<EngineOutput> outputs;
};

// What the library owns. None is ever deleted, so that a released one is recognised when it is used again.
struct Object {
    virtual ~Object() = default;
    virtual const char* kind() const = 0;
    bool released = false;
    bool starting = false; // when nothing but the callbacks may use it
};

} // namespace recording

struct SubstanceLinkerContext_ : recording::Object {
    const char* kind() const override { return "linker"; }
    SubstanceLinkerTextCallback text = [](auto*, unsigned int, const char*) {};
    SubstanceLinkerBytesCallback bytes = [](auto*, unsigned int, const unsigned char*, size_t) {};
    std::vector<SubstanceLinkerHandle*> handles;
};

struct SubstanceLinkerHandle_ : recording::Object {
    const char* kind() const override { return "link"; }
    SubstanceLinkerContext* context = nullptr;
    unsigned int pushes = 0;
    bool failed = false; // a push: the link then fails too
    std::string label;   // "linked:" and the tags of what was pushed
    recording::Program program;
    std::string linked;
};

struct SubstanceContext_ : recording::Object {
    const char* kind() const override { return "context"; }
    SubstanceOutputCompletedCallback completed = nullptr;
};

struct SubstanceHandle_ : recording::Object {
    const char* kind() const override { return "handle"; }
    SubstanceContext* context = nullptr;
    recording::Program program;
    std::vector<recording::Report> queue;
    std::map<unsigned int, std::string> values;   // as shown, by input index
    std::map<unsigned int, std::string> asked;    // what each output is to be computed from, by output index
    std::map<unsigned int, std::string> computed; // textures to fetch
};

namespace recording {

// What reset() forgets: the trace, the names and the script.
struct Session {
    std::thread::id host = std::this_thread::get_id();
    std::string trace;
    std::map<std::string, std::map<const void*, unsigned int>> numbers; // of objects, by kind
    unsigned int buffersMade = 0;

    std::map<std::string, std::pair<unsigned int, Failing>> failures; // calls to go, by function
    Texture texture;
    std::function<unsigned int(const Start&)> onStart;
};

struct Buffer {
    const SubstanceContext* context;
    unsigned int number;
};

struct State {
    std::mutex mutex;
    Session session;
    std::string misuses;
    unsigned int nextUid = 100;
    std::map<unsigned int, std::string> uidNames;
    std::map<std::string, std::string> descriptions; // by the bytes of the assembly
    std::map<std::string, Program> linked;           // by their bytes
    std::vector<std::unique_ptr<Object>> objects;
    std::map<const void*, Buffer> buffers;
};

State& state(); // never destroyed

// The rest with the mutex held.
void record(const std::string& line);
void misuse(const std::string& what);
std::string name(const char* kind, const void* object);
std::string name(const Object* object);
std::string bufferName(const void* buffer);
std::string uidName(unsigned int uid);
bool isAlive(const Object* object);

std::string firstLine(const void* data, size_t size); // quoted

struct Uid {
    unsigned int value;
};

// For isInsideDouble: marks the thread, or with false takes the mark off for the time of a callback.
class Inside {
public:
    explicit Inside(bool isInside = true)
        : before(std::exchange(current, isInside)) {}
    Inside(const Inside&) = delete;
    Inside& operator=(const Inside&) = delete;
    ~Inside() { current = before; }

    static thread_local bool current;

private:
    const bool before;
};

// One call of the library's while it is carried out, with the mutex held.
class Call {
public:
    template <class... T>
    explicit Call(const char* name, const T&... values)
        : lock(state().mutex)
        , function(name)
        , status(takeFailure()) {
        print(values...);
    }

    // Adds arguments to the line. An object that may not be used makes the call fail.
    template <class... T>
    void print(const T&... values) {
        ((arguments += (arguments.empty() ? "" : ", ") + text(values)), ...);
    }

    // Makes the object of an out-parameter, unless the call fails.
    template <class T>
    T* create() {
        if (!ok()) return nullptr;
        state().objects.push_back(std::make_unique<T>());
        return static_cast<T*>(state().objects.back().get());
    }

    void require(bool condition) {
        if (!condition && ok()) status = 1;
    }
    bool ok() const { return status == 0; }

    // Ends what the call releases, unless that was gone before.
    unsigned int release(Object* object) {
        if (isAlive(object)) object->released = true;
        return end();
    }

    // Does what the call does, unless it fails. An index out of range ends the process.
    template <class Body>
    unsigned int run(const Body& body) {
        if (ok()) body();
        return end();
    }

    // Writes the line and lets go of the mutex.
    unsigned int end();

private:
    template <class T>
    std::string text(const T& value) {
        if constexpr (std::is_convertible_v<T, const Object*>)
            return useObject(value);
        else if constexpr (std::is_same_v<T, Uid>)
            return uidName(value.value);
        else if constexpr (std::is_arithmetic_v<T>)
            return std::to_string(value);
        else
            return value;
    }
    std::string useObject(const Object* object);
    unsigned int takeFailure() const;

    const Inside inside;
    std::unique_lock<std::mutex> lock;
    const std::string function;
    std::string arguments;
    unsigned int status;
};

} // namespace recording
