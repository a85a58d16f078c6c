// An engine context and a handle, as the library uses them, and the textures that come of it.
#pragma once

#include "conformance/Interface.h"

#include <array>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace kvSubstance::conformance {

// What an input is set to. For an image: the kit's test image.
struct Value {
    int type = SubstanceInputFloat;
    std::array<std::uint32_t, 4> words{}; // the bits of up to four floats or integers
};

bool isIntegerType(int type);
int componentCount(int type); // 0 for what is no type

// The value that a description's text stands for.
Value valueFromText(int type, const std::string& text);

// Colours of 4 x 4 texels, 8-bit RGBA, opaque. The pixels live as long as the process.
SubstanceTextureInput testImage();

// A texture whose buffer is freed already.
struct Picture {
    unsigned int width = 0, height = 0, levels = 0;
    int format = 0;
    std::string pixels; // 4 bytes each, all levels
};
bool operator==(const Picture& a, const Picture& b);
bool operator!=(const Picture& a, const Picture& b);

class EngineContext {
public:
    explicit EngineContext(const Interface::Engine& engine);
    ~EngineContext();
    EngineContext(const EngineContext&) = delete;
    EngineContext& operator=(const EngineContext&) = delete;

    SubstanceContext* get() const { return context_; }
    void release(); // now

private:
    const Interface::Engine& engine_;
    SubstanceContext* context_ = nullptr;
    bool isReleased_ = false;
};

// Members throw Broken when a call fails that has no reason to.
class EngineHandle {
public:
    // Integer2 inputs of the uids given are set to small sizes.
    EngineHandle(const Interface::Engine& engine, const EngineContext& context, const std::string& assembly,
                 const std::set<unsigned int>& resolutionUids);
    ~EngineHandle();
    EngineHandle(const EngineHandle&) = delete;
    EngineHandle& operator=(const EngineHandle&) = delete;

    SubstanceHandle* get() const { return handle_; }
    const std::vector<SubstanceInputDesc>& inputs() const { return inputs_; }
    const std::vector<SubstanceOutputDesc>& outputs() const { return outputs_; }
    unsigned int inputIndex(unsigned int uid) const;
    unsigned int outputIndex(unsigned int uid) const;
    std::set<unsigned int> inputUids() const;

    void set(unsigned int uid, const Value& value);
    void ask(const std::vector<unsigned int>& uids, void* jobUserData = nullptr,
             unsigned int flags = SubstancePushOutputUids);
    void start();
    SubstanceTexture fetch(unsigned int outputIndex);
    Picture take(unsigned int uid); // fetches, copies and frees
    Picture render(unsigned int uid);
    void release(); // now

private:
    void readPorts();

    const Interface::Engine& engine_;
    SubstanceHandle* handle_ = nullptr;
    std::vector<SubstanceInputDesc> inputs_;
    std::vector<SubstanceOutputDesc> outputs_;
};

// Takes the texture's bytes and gives the buffer back.
Picture consume(const Interface::Engine& engine, SubstanceContext* context, const SubstanceTexture& texture);

} // namespace kvSubstance::conformance
