/// @file
/// The C functions of platform/linker.h and platform/engine.h as values, so that whoever judges them can be
/// handed others than those that the program is linked with.
#pragma once

#include "platform/engine.h"
#include "platform/linker.h"

namespace kvSubstance::conformance {

/// A linker and an engine that belong together.
struct Interface {
    /// platform/linker.h.
    struct Linker {
        /// @{
        /// As it is declared there.
        decltype(&substanceLinkerContextInit) contextInit;
        decltype(&substanceLinkerContextSetCallback) contextSetCallback;
        decltype(&substanceLinkerContextRelease) contextRelease;
        decltype(&substanceLinkerHandleInit) handleInit;
        decltype(&substanceLinkerHandlePushAssemblyMemory) push;
        decltype(&substanceLinkerHandleSetOutputFormat) setOutputFormat;
        decltype(&substanceLinkerConnectOutputToInput) connect;
        decltype(&substanceLinkerHandleSelectOutputs) selectOutputs;
        decltype(&substanceLinkerFuseInputs) fuse;
        decltype(&substanceLinkerHandleLink) link;
        decltype(&substanceLinkerHandleRelease) handleRelease;
        /// @}
    };

    /// platform/engine.h.
    struct Engine {
        /// @{
        /// As it is declared there.
        decltype(&substanceContextInit) contextInit;
        decltype(&substanceContextSetCallback) contextSetCallback;
        decltype(&substanceContextRelease) contextRelease;
        decltype(&substanceContextMemoryFree) memoryFree;
        decltype(&substanceHandleInit) handleInit;
        decltype(&substanceHandleGetDesc) getDesc;
        decltype(&substanceHandleGetInputDesc) getInputDesc;
        decltype(&substanceHandleGetOutputDesc) getOutputDesc;
        decltype(&substanceHandleGetOutputs) getOutputs;
        decltype(&substanceHandleGetParentContext) getParentContext;
        decltype(&substanceHandlePushSetInput) pushSetInput;
        decltype(&substanceHandlePushOutputs) pushOutputs;
        decltype(&substanceHandleStart) start;
        decltype(&substanceHandleRelease) handleRelease;
        /// @}
    };

    Linker linker; ///< The linker's functions; none is null.
    Engine engine; ///< The engine's functions; none is null.
};

/// The functions that the program is linked with.
Interface linkedInterface();

} // namespace kvSubstance::conformance
