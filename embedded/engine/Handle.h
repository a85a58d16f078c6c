// The engine handle: one program, the values of its inputs, the queue of wanted outputs and the textures of
// the last run.
#pragma once

#include "embedded/engine/Context.h"
#include "embedded/engine/InputValues.h"
#include "embedded/program/Program.h"
#include "platform/engine.h"

#include <map>
#include <memory>
#include <optional>
#include <vector>

// All members may throw std::bad_alloc unless they say otherwise. False: refused, nothing changed.
struct SubstanceHandle_ {
public:
    // The context has to be attached to, with the pool that this gave.
    SubstanceHandle_(SubstanceContext& context, std::shared_ptr<embedded::WorkerPool> pool,
                     embedded::Program program);
    ~SubstanceHandle_();
    SubstanceHandle_(const SubstanceHandle_&) = delete;
    SubstanceHandle_& operator=(const SubstanceHandle_&) = delete;

    SubstanceContext& context() const { return context_; }
    const embedded::Program& program() const { return program_; }
    bool running() const { return running_; }

    bool setInput(unsigned int index, int type, const void* value);
    void pushOutputs(const unsigned int* uids, unsigned int count, void* jobUserData);
    void start();
    std::optional<SubstanceTexture> takeTexture(unsigned int outputIndex);

private:
    // What one push of outputs asked for, with the input values of that moment.
    struct Request {
        std::vector<std::size_t> outputs;
        std::shared_ptr<const embedded::InputValues> inputs;
        void* jobUserData;
    };

    class Textures;

    void compute(const Request& request);
    void keepTexture(std::size_t output, const SubstanceTexture& texture);

    SubstanceContext& context_;
    const std::shared_ptr<embedded::WorkerPool> pool_;
    const embedded::Program program_;
    std::shared_ptr<const embedded::InputValues> inputs_; // replaced, never changed: requests share it
    std::vector<Request> queue_;
    std::map<std::size_t, SubstanceTexture> textures_; // not yet fetched, by output
    bool running_ = false;
};
