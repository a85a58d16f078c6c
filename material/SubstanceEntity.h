// What inputs, outputs and materials have in common: a name, a number, and a signal that tells of changes.
//
// Threads: the material model takes no locks. Whoever uses a material, its entities included, makes sure that
// one thread at a time does.
#pragma once

#include "material/Export.h"
#include "platform/base.h"

namespace kvSubstance {

// Entities live on the heap and are counted; kv::Reference<T> holds them. Plain pointers that this library
// returns are borrowed from the material.
class KVSUBSTANCE_API SubstanceEntity : public kv::ReferenceCount {
public:
    // The identifier is copied.
    SubstanceEntity(unsigned int uid, const kvString::CString& identifier);
    ~SubstanceEntity() override;

    unsigned int getUID() const { return uid; }
    const kvString::CString& getIdentifier() const { return identifier; }

    // True from the first change until clearModified.
    bool isModified() const { return modifiedFlag; }

    // Marks the entity modified and calls its listeners. Callbacks bind to this slot when a change of one
    // entity is to count as a change of another.
    void onModified();

    // Marks the entity unmodified; no listener is told.
    virtual void clearModified();

    // For listeners: connect a callback to this signal to be called at every change. For instance, with a
    // listener that owns a kvRTB::SignalBase named tracking:
    //
    //     entity.getModifiedSignal().connect(kvRTB::FunctionVoidMember<Listener>(&listener,
    //     &Listener::changed),
    //                                        listener.tracking);
    //
    // Callbacks run on the thread that makes the change, before the setter returns, in the order in which
    // they were connected. They may edit this or other entities, connect further callbacks, destroy their own
    // or another listener, and drop the last reference to the entity. Changes made in callbacks are told in
    // the same way, within the limits below.
    kvRTB::SignalBase& getModifiedSignal() { return modifiedSignal; }

    // The receiver to name when a callback that is bound to this entity is connected to some other signal:
    // the connection ends when this entity dies.
    kvRTB::SignalBase& getReceiver() { return receiver; }

    // Entities may mark each other modified in rings. What goes beyond these limits is not called; the
    // modified flags are set all the same.
    static constexpr int MaxNestedEmissions = 256;          // emissions inside each other
    static constexpr int MaxCallbacksPerEmission = 1000000; // in an outermost emission and all inside it

protected:
    // Sets the modified flag, then calls the listeners. A listener may have destroyed the entity by the time
    // this returns.
    void modified();

private:
    kvRTB::SignalBase modifiedSignal;
    kvRTB::SignalBase receiver;
    kvString::CString identifier;
    unsigned int uid;
    bool modifiedFlag = false;
};

} // namespace kvSubstance
