#include "tests/recording/RecordingState.h"

#include <tinyxml.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <locale>

namespace recording {

namespace {

thread_local bool isEngineThread = false;

// Prints what is left when the process ends. Made before, and so destroyed after, all static objects of the
// library and of the tests.
struct ExitCheck {
    ~ExitCheck() {
        const std::string left = leaks();
        if (left.empty()) return;
        std::fprintf(stderr, "not released, or misused, at the end of the process:\n%s", left.c_str());
        std::_Exit(1);
    }
};

#ifdef _MSC_VER
#pragma init_seg(lib)
ExitCheck exitCheck;
#else
__attribute__((init_priority(101))) ExitCheck exitCheck;
#endif

unsigned int unsignedAttribute(const TiXmlElement& element, const char* attribute) {
    const char* const text = element.Attribute(attribute);
    return text ? static_cast<unsigned int>(std::strtoul(text, nullptr, 10)) : 0;
}

int intAttribute(const TiXmlElement& element, const char* attribute) {
    int value = 0;
    element.QueryIntAttribute(attribute, &value);
    return value;
}

std::vector<const TiXmlElement*> children(const TiXmlElement* parent, const char* name) {
    std::vector<const TiXmlElement*> result;
    if (!parent) return result;
    for (const TiXmlElement* child = parent->FirstChildElement(name); child;
         child = child->NextSiblingElement(name))
        result.push_back(child);
    return result;
}

} // namespace

State& state() {
    static State* const instance = new State;
    return *instance;
}

void enterEngineThread() {
    isEngineThread = true;
}

Program readDescription(const Package& package) {
    Program program;
    TiXmlDocument document;
    document.Parse((package.descriptionXml + "\n").c_str(), nullptr, TIXML_ENCODING_UTF8);
    const TiXmlElement* const root = document.RootElement();
    const auto nameUid = [&](const TiXmlElement& element) {
        const char* const identifier = element.Attribute("identifier");
        const unsigned int uid = unsignedAttribute(element, "uid");
        state().uidNames[uid] = package.tag + "." + (identifier ? identifier : "");
        return uid;
    };
    for (const TiXmlElement* graph : children(root ? root->FirstChildElement("graphs") : nullptr, "graph")) {
        for (const TiXmlElement* output : children(graph->FirstChildElement("outputs"), "output"))
            program.outputs.push_back(
                {nameUid(*output), intAttribute(*output, "format"), unsignedAttribute(*output, "mipmaps")});
        for (const TiXmlElement* input : children(graph->FirstChildElement("inputs"), "input"))
            program.inputs.push_back({nameUid(*input), intAttribute(*input, "type")});
    }
    return program;
}

std::string show(const void* data, size_t size) {
    const char* const text = static_cast<const char*>(data);
    const char* const end = text ? std::find(text, text + size, '\n') : text;
    const bool readable =
        text && end != text && std::all_of(text, end, [](char c) { return c >= ' ' && c <= '~'; });
    return readable ? '"' + std::string(text, end) + '"' : std::to_string(size) + " bytes";
}

void State::record(const std::string& line) {
    const char* const thread = isEngineThread                       ? "engine"
                               : std::this_thread::get_id() == host ? "host"
                                                                    : "worker";
    const std::string whole = std::string(thread) + ": " + line + "\n";
    trace += whole;
    if (echo) std::fputs(whole.c_str(), stderr);
}

void State::misuse(const std::string& what) {
    misuses += "misuse: " + what + "\n";
}

std::string State::name(const char* kind, const void* object) {
    if (!object) return "null";
    auto& known = numbers[kind];
    const auto number = known.emplace(object, static_cast<unsigned int>(known.size()) + 1).first->second;
    return kind + std::to_string(number);
}

std::string State::bufferName(const void* buffer) const {
    if (!buffer) return "null";
    const auto found = buffers.find(buffer);
    return found == buffers.end() ? "a foreign buffer" : "buffer" + std::to_string(found->second.number);
}

std::string State::uidName(unsigned int uid) const {
    const auto found = uidNames.find(uid);
    return found == uidNames.end() ? std::to_string(uid) : found->second;
}

Call::Call(const char* functionName)
    : lock(state().mutex)
    , function(functionName) {
    arguments.imbue(std::locale::classic());
    auto& failures = state().script.failures;
    const auto range = failures.equal_range(function);
    for (auto failure = range.first; failure != range.second;) {
        if (--failure->second.first == 0) {
            status = failure->second.second;
            failure = failures.erase(failure);
        } else {
            ++failure;
        }
    }
}

unsigned int Call::end() {
    std::string line = std::string(function) + "(" + arguments.str() + ")";
    if (status) line += " = " + std::to_string(status);
    state().record(line);
    lock.unlock();
    return status;
}

} // namespace recording
