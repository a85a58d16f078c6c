// One loaded package: its compiled assembly and the description of its graphs.
#pragma once

#include "framework/description/GraphDesc.h"
#include "framework/description/OutputFormat.h"
#include "platform/linker.h"

#include <boost/core/noncopyable.hpp>
#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <vector>

namespace SubstanceAir {

class GraphInstance;

// Complete when its constructor returns, and only read from then on, by the host's thread and the render
// thread alike. Packages are built one at a time: the linker's answers pass through process-wide buffers.
//
// A package whose description could be read is registered with the renderer under its assembly's uid, which
// finds it there when it links. One without graphs leaves its key behind when it dies, which then leads to
// nothing.
class PackageDesc : private boost::noncopyable {
public:
    // Reads a package file's bytes, which are not kept. Null options are all format classes and the mipmaps
    // as described. There is no error result: what cannot be read has no graphs.
    PackageDesc(const void* data, size_t size, const OutputFormatOptions* options);
    virtual ~PackageDesc();

    // Pushes the assembly and the outputs' formats into a linker handle, which stays the caller's. False when
    // the linker refuses the assembly.
    virtual bool pushToLinker(SubstanceLinkerHandle* handle) const;

    const std::vector<GraphDesc>& graphs() const { return graphDescs; } // in document order
    unsigned int asmUid() const { return assemblyUid; }

protected:
    // For derived classes: empty, and not registered.
    PackageDesc();

    // Takes the package out of the renderer's reach, then frees the graphs. The destructor does it; a derived
    // class does it first of all in its own, so that the render thread never meets one that is half gone.
    void close();

    std::vector<char> assembly;
    unsigned int assemblyUid = 0;
    std::vector<GraphDesc> graphDescs;

private:
    bool isRegistered = false; // by the constructor that reads a package
};

// Appends a new instance of every graph of the package, in order. The package outlives them.
void instantiateGraphs(std::vector<boost::shared_ptr<GraphInstance>>& instances, const PackageDesc& package);

} // namespace SubstanceAir
