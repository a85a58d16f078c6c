#include "material/SubstanceEntity.h"

#include <mutex>

namespace kvSubstance {

namespace {

// The emissions that are going on inside each other on a thread.
struct NestedEmissions {
    int depth = 0;
    int callbacks = 0; // called since the outermost began
};
thread_local NestedEmissions nested;

class Emission {
public:
    Emission() {
        if (nested.depth++ == 0) nested.callbacks = 0;
    }
    Emission(const Emission&) = delete;
    Emission& operator=(const Emission&) = delete;
    ~Emission() { --nested.depth; }

    bool isWithinLimits() const { return nested.depth <= SubstanceEntity::MaxNestedEmissions; }
    bool countCallback() {
        return nested.callbacks < SubstanceEntity::MaxCallbacksPerEmission && ++nested.callbacks;
    }
};

} // namespace

SubstanceEntity::SubstanceEntity(unsigned int entityUid, const kvString::CString& entityIdentifier)
    : identifier(entityIdentifier)
    , uid(entityUid) {}

SubstanceEntity::~SubstanceEntity() = default;

void SubstanceEntity::onModified() {
    modified();
}

void SubstanceEntity::clearModified() {
    modifiedFlag = false;
}

// A callback may destroy this entity: behind the first one only the walk, which keeps the connections alive,
// is touched. The list is not copied, so that a callback that is connected meanwhile is reached too.
void SubstanceEntity::modified() {
    modifiedFlag = true;
    Emission emission;
    if (!emission.isWithinLimits()) return;
    kvRTB::SignalWalk walk(modifiedSignal);
    kvRTB::SignalItem* item = walk.first();
    while (item) {
        const std::lock_guard<kvRTB::SignalItem> hold(*item);
        if (!item->isBlocked() && !item->isRemoved()) {
            if (!emission.countCallback()) return;
            item->function().invoke();
        }
        item = walk.next();
    }
}

} // namespace kvSubstance
