/// @file
/// What inputs, outputs and materials have in common: a name, a number, and a signal that tells of changes.
///
/// Threads: the material model takes no locks. Whoever uses a material, its entities included, makes sure
/// that one thread at a time does. Different materials may be used by different threads.
#pragma once

#include "material/Export.h"
#include "platform/base.h"

/// The library: the material model, and the way to the engine and back.
namespace kvSubstance {

/// Entities live on the heap and are counted; kv::Reference<T> holds them. Plain pointers that this library
/// returns are borrowed from the material.
class KVSUBSTANCE_API SubstanceEntity : public kv::ReferenceCount {
public:
    /// The identifier is copied.
    SubstanceEntity(unsigned int uid, const kvString::CString& identifier);
    ~SubstanceEntity() override;

    /// The number by which saved documents know the entity; 0 for a material.
    unsigned int getUID() const { return uid; }

    /// The name in the package, not for people; empty for a material. Valid as long as the entity lives.
    const kvString::CString& getIdentifier() const { return identifier; }

    /// True from the first change until clearModified.
    bool isModified() const { return modifiedFlag; }

    /// Marks the entity modified and calls its listeners. Callbacks bind to this slot when a change of one
    /// entity is to count as a change of another.
    void onModified();

    /// Marks the entity unmodified; no listener is told.
    virtual void clearModified();

    /// For listeners: connect a callback to this signal to be called at every change. For instance, with a
    /// listener that owns a kvRTB::SignalBase named tracking:
    ///
    ///     kvRTB::FunctionVoidMember<Listener> callback(&listener, &Listener::changed);
    ///     entity.getModifiedSignal().connect(callback, listener.tracking);
    ///
    /// Callbacks run on the thread that makes the change, before the setter returns, in the order in which
    /// they were connected. They may edit this or other entities, connect further callbacks, destroy their
    /// own or another listener, and drop the last reference to the entity. Changes made in callbacks are told
    /// in the same way, within the limits below.
    kvRTB::SignalBase& getModifiedSignal() { return modifiedSignal; }

    /// The receiver to name when a callback that is bound to this entity is connected to some other signal:
    /// the connection ends when this entity dies.
    kvRTB::SignalBase& getReceiver() { return receiver; }

    /// @{
    /// Entities may mark each other modified in rings. What goes beyond these limits, of emissions inside
    /// each other and of callbacks in an outermost emission and all inside it, is not called; the modified
    /// flags are set all the same.
    static constexpr int MaxNestedEmissions = 256;
    static constexpr int MaxCallbacksPerEmission = 1000000;
    /// @}

protected:
    /// Sets the modified flag, then calls the listeners. A listener may have destroyed the entity by the time
    /// this returns.
    void modified();

private:
    kvRTB::SignalBase modifiedSignal;
    kvRTB::SignalBase receiver;
    kvString::CString identifier;
    unsigned int uid;
    bool modifiedFlag = false;
};

} // namespace kvSubstance
