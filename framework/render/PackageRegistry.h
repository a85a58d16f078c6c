// Every living package by its uid, for the linker's use.
#pragma once

#include "platform/linker.h"

#include <boost/core/noncopyable.hpp>
#include <boost/thread/mutex.hpp>

#include <map>
#include <vector>

namespace SubstanceAir {

class PackageDesc;

// Has a mutex of its own, because the render thread looks packages up without the renderer mutex. Packages
// are not owned. A key may outlive its package: then there is nothing to be found under it.
class PackageRegistry : private boost::noncopyable {
public:
    void insert(const PackageDesc& package, unsigned int uid); // replaces an entry of that uid
    void erase(unsigned int uid);                              // whichever package holds it
    void forget(const PackageDesc& package);                   // keeps the key
    bool contains(unsigned int uid) const;                     // the key

    // Pushes the packages of these uids into a linker handle, in order, those that are there. None of them
    // dies meanwhile.
    void pushToLinker(const std::vector<unsigned int>& uids, SubstanceLinkerHandle* handle) const;

private:
    mutable boost::mutex mutex;
    std::map<unsigned int, const PackageDesc*> packages;
};

} // namespace SubstanceAir
