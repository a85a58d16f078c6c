// A linker context with one handle, as the library uses them.
#pragma once

#include "conformance/Interface.h"

#include <string>

namespace kvSubstance::conformance {

// Both end with it. Members throw Broken when a call fails that has no reason to.
class Linking {
public:
    // Both callbacks are the recorder's.
    explicit Linking(const Interface::Linker& linker);
    ~Linking();
    Linking(const Linking&) = delete;
    Linking& operator=(const Linking&) = delete;

    SubstanceLinkerContext* context() const { return context_; }
    SubstanceLinkerHandle* handle() const { return handle_; }

    SubstanceLinkerHandle* newHandle(); // dies with the context unless it is released before
    void push(const std::string& bytes);
    unsigned int tryToPush(const std::string& bytes);
    std::string link();
    // Refused, as it should be, and the out-parameters say so.
    void expectNoLink(const char* when);

private:
    const Interface::Linker& linker_;
    SubstanceLinkerContext* context_ = nullptr;
    SubstanceLinkerHandle* handle_ = nullptr;
};

} // namespace kvSubstance::conformance
