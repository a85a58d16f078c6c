#include "framework/render/PackageRegistry.h"

#include "framework/description/PackageDesc.h"

#include <boost/thread/lock_guard.hpp>

namespace SubstanceAir {

using Lock = boost::lock_guard<boost::mutex>;

void PackageRegistry::insert(const PackageDesc& package, unsigned int uid) {
    const Lock lock(mutex);
    packages[uid] = &package;
}

void PackageRegistry::erase(unsigned int uid) {
    const Lock lock(mutex);
    packages.erase(uid);
}

void PackageRegistry::forget(const PackageDesc& package) {
    const Lock lock(mutex);
    for (auto& entry : packages)
        if (entry.second == &package) entry.second = nullptr;
}

bool PackageRegistry::contains(unsigned int uid) const {
    const Lock lock(mutex);
    return packages.count(uid) != 0;
}

void PackageRegistry::pushToLinker(const std::vector<unsigned int>& uids,
                                   SubstanceLinkerHandle* handle) const {
    const Lock lock(mutex);
    std::vector<const PackageDesc*> found;
    for (const unsigned int uid : uids) {
        const auto entry = packages.find(uid);
        if (entry != packages.end() && entry->second) found.push_back(entry->second);
    }
    // A package that fails shows when the handle is linked.
    for (const PackageDesc* const package : found) package->pushToLinker(handle);
}

} // namespace SubstanceAir
