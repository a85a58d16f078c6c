// What stands behind the recording double: objects, script and trace under one mutex.
#pragma once

#include "platform/linker.h"
#include "tests/recording/Recording.h"

#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace recording {

struct Program {
    std::vector<EngineInput> inputs;
    std::vector<EngineOutput> outputs;
};

// A package or assembly that the linker knows.
struct Package {
    std::string tag;
    std::string descriptionXml;
};

} // namespace recording

struct SubstanceLinkerContext_ {
    static constexpr const char* kind = "linker";
    bool released = false;
    SubstanceLinkerTextCallback text = nullptr;
    SubstanceLinkerBytesCallback bytes = nullptr;
};

struct SubstanceLinkerHandle_ {
    static constexpr const char* kind = "link";
    bool released = false;
    SubstanceLinkerContext* context = nullptr;
    unsigned int pushes = 0;
    bool failed = false;
    std::string label; // "linked:" and the tags of what was pushed
    recording::Program program;
    std::string linked;
};

struct SubstanceContext_ {
    static constexpr const char* kind = "context";
    bool released = false;
    SubstanceOutputCompletedCallback completed = nullptr;
};

struct SubstanceHandle_ {
    static constexpr const char* kind = "handle";
    bool released = false;
    SubstanceContext* context = nullptr;
    recording::Program program;
    std::map<unsigned int, std::string> values;        // by input index, as printed
    std::vector<std::pair<unsigned int, void*>> queue; // output index, job user data
    std::set<unsigned int> computed;                   // output indices with a texture to fetch
    bool starting = false;
};

namespace recording {

// Objects of one kind. None is ever deleted, so that a released one is recognised when it is used again.
template <class T>
class Objects {
public:
    T* create() {
        all.push_back(std::make_unique<T>());
        return all.back().get();
    }
    T* find(const T* object) const {
        for (const auto& each : all)
            if (each.get() == object) return each.get();
        return nullptr;
    }
    auto begin() const { return all.begin(); }
    auto end() const { return all.end(); }

private:
    std::vector<std::unique_ptr<T>> all;
};

struct Buffer {
    const SubstanceContext* context;
    unsigned int number;
};

struct Script {
    std::vector<Delivery> deliveries{Delivery::Text, Delivery::Bytes};
    std::multimap<std::string, std::pair<unsigned int, unsigned int>> failures; // calls to go, status
    bool hasDescription = false;
    Program description;
    Completions completions;
    Texture texture;
    bool blockNextStart = false;
};

struct State {
    std::mutex mutex;
    std::thread::id host = std::this_thread::get_id();
    std::string trace;
    bool echo = false;
    std::string misuses;
    Script script;

    Objects<SubstanceLinkerContext> linkerContexts;
    Objects<SubstanceLinkerHandle> linkerHandles;
    Objects<SubstanceContext> contexts;
    Objects<SubstanceHandle> handles;
    std::map<const void*, Buffer> buffers;
    std::map<std::string, Package> assemblies; // by their bytes
    std::map<std::string, Program> linked;     // by their bytes
    std::map<unsigned int, std::string> uidNames;
    unsigned int nextUid = 100;

    std::map<std::string, std::map<const void*, unsigned int>> numbers; // by kind
    unsigned int buffersMade = 0;

    std::condition_variable startChanged;
    bool startBlocked = false;
    bool startReleased = false;

    // The rest with the mutex held.
    void record(const std::string& line);
    void misuse(const std::string& what);
    std::string name(const char* kind, const void* object);
    std::string bufferName(const void* buffer) const;
    std::string uidName(unsigned int uid) const;

    Objects<SubstanceLinkerContext>& objects(const SubstanceLinkerContext*) { return linkerContexts; }
    Objects<SubstanceLinkerHandle>& objects(const SubstanceLinkerHandle*) { return linkerHandles; }
    Objects<SubstanceContext>& objects(const SubstanceContext*) { return contexts; }
    Objects<SubstanceHandle>& objects(const SubstanceHandle*) { return handles; }
};

State& state(); // never destroyed

// Marks the threads of this double.
void enterEngineThread();

// The inputs and outputs of all graphs of a description, in its order; names their uids.
Program readDescription(const Package& package);

// The first line of printable bytes, quoted; else their number.
std::string show(const void* data, size_t size);

// One call of the library's while it is carried out, with the mutex held.
class Call {
public:
    explicit Call(const char* function);

    // The object itself while it may be used, else null, and the call fails.
    template <class T>
    T* object(T* pointer) {
        print(state().name(T::kind, pointer));
        T* const known = state().objects(pointer).find(pointer);
        if (known && !known->released) return known;
        refuse();
        if (pointer) state().misuse(std::string(function) + " uses " + state().name(T::kind, pointer));
        return nullptr;
    }

    // Makes the object of an out-parameter, unless the call fails.
    template <class T>
    T* create() {
        return ok() ? state().objects(static_cast<T*>(nullptr)).create() : nullptr;
    }

    template <class... T>
    void print(const T&... values) {
        ((arguments << separator << values, separator = ", "), ...);
    }
    void refuse() { status = status ? status : 1; }
    bool ok() const { return status == 0; }

    // Writes the line and lets go of the mutex.
    unsigned int end();

private:
    std::unique_lock<std::mutex> lock;
    const char* function;
    std::ostringstream arguments;
    const char* separator = "";
    unsigned int status = 0;
};

} // namespace recording
