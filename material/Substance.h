/// @file
/// The chief header of the material model: a material with its inputs and outputs, and the reader of
/// host-side descriptions.
#pragma once

#include "material/SubstanceEntity.h"
#include "material/SubstanceInput.h"
#include "material/SubstanceOutput.h"
#include "material/SubstanceReader.h"
#include "platform/image.h"

#include <boost/shared_ptr.hpp>

#include <unordered_set>
#include <vector>

namespace SubstanceAir {
class GraphInstance;
class PackageDesc;
class PackageStackDesc;
} // namespace SubstanceAir

namespace kvSubstance {

/// One material: its inputs and outputs, found by identifier or by uid, the engine's objects that render it,
/// and the last texture that came of it. It is an entity itself, with uid 0 and no identifier: a change of
/// any of its entities marks it modified and calls its listeners.
///
/// Materials come from createSubstance or from SubstanceReader; a host may also fill one by hand. They own
/// their entities. Packages and the package stack are borrowed.
///
/// Threads: one at a time, but see SubstanceEntity.h. Memory that is not to be had throws std::bad_alloc.
class KVSUBSTANCE_API Substance : public SubstanceEntity {
public:
    /// An empty material. Held by a kv::Reference before anything is done with it.
    Substance();

    /// Entities that somebody else holds live on without the material. Waits for a render in progress.
    ~Substance() override;

    /// @{
    /// Creates an entity, which the material owns, and listens to it; the pointer is borrowed. An earlier
    /// entity of the same identifier, or of the same uid, is no longer found under it and is let go; input
    /// ids are listed all the same.
    SubstanceInput* newInput(unsigned int uid, const kvString::CString& identifier, Type type);
    SubstanceOutput* newOutput(unsigned int uid, const kvString::CString& identifier, Format format,
                               int xSize, int ySize, int numMipMaps, bool dynamicSize);
    /// @}

    /// @{
    /// Borrowed, valid until an entity of the same identifier (uid) replaces it or the material dies; null
    /// when there is none. An entity by uid is an input or an output.
    SubstanceInput* getInput(const kvString::CString& identifier) const;
    SubstanceOutput* getOutput(const kvString::CString& identifier) const;
    SubstanceEntity* getEntity(unsigned int uid) const;
    /// @}

    int numInputs() const { return inputs.count(); }   ///< Different identifiers among the inputs.
    int numOutputs() const { return outputs.count(); } ///< Different identifiers among the outputs.

    /// The identifiers given to newInput, in the order of the calls, repeated ones included. Valid as long as
    /// the material lives; a walk over it must not call newInput.
    const kv::vector<kvString::CString>& getInputIds() const { return inputIds; }

    /// Resets every input to its default, in the order in which their identifiers first came up. Listeners
    /// are called for each component that changes. Nothing is carried over to the engine's side.
    void reset();

    /// Marks the material and all its entities unmodified; no listener is told.
    void clearModified() override;

    /// Names the package graph that the material was made from. The name is part of the state string and of
    /// the inputs' index identifiers. No listener is told.
    void setPackageURL(kvString::CString url) { packageURL = std::move(url); }
    /// For a stack "BOTTOM/TOP", the URLs of both graphs; empty until set. Valid as long as the material
    /// lives, and shows later changes.
    const kvString::CString& getPackageURL() const { return packageURL; }

    void setLabel(kvString::IString text) { label = std::move(text); } ///< For people. No listener is told.
    /// For a stack the bottom graph's; empty until set. Valid as long as the material lives.
    const kvString::IString& getLabel() const { return label; }

    /// What the material is rendered from, all null for a material without an engine. Borrowed: they outlive
    /// the material, and nothing here deletes them.
    void setPackageDesc(SubstanceAir::PackageStackDesc* stack, SubstanceAir::PackageDesc* first,
                        SubstanceAir::PackageDesc* second);
    /// Null for a material without an engine; such a material has no texture.
    SubstanceAir::PackageStackDesc* getPackageStackDesc() const { return packageStack; }

    /// The engine-side graphs, shared; the list itself, to fill and to use. Empty for a material without an
    /// engine.
    std::vector<boost::shared_ptr<SubstanceAir::GraphInstance>>& getGraphInstances() {
        return graphInstances;
    }

    /// The last texture, of which the material holds one temporary reference. Null when there never was one.
    kv::TempReference<ilSIDImage> getCachedTexture() const { return cachedTexture; }
    /// Replaces the last texture; an empty reference drops it. getTextureFromSubstance does this itself.
    void setCachedTexture(kv::TempReference<ilSIDImage> texture) { cachedTexture = std::move(texture); }

    /// The values of all inputs but images as text, to be stored and applied again later: the package URL,
    /// then one line for each input, each ended by a line feed.
    ///
    ///     pkg://brick
    ///     7d f2 0.500000 1.000000
    ///     9d i1 3
    ///
    /// A line holds the uid with a "d" behind it, "i" or "f" with the number of components, and the
    /// components. Floats have six decimals; the text is the same in every locale.
    kvString::CString getStateString() const;

    /// Sets the values that a state string holds, through the ordinary setters, and hands them to the engine.
    /// Text of another package URL changes nothing; lines of unknown uids are passed over. Missing or
    /// unreadable numbers are 0. The material must be held by a reference; a listener may drop it during the
    /// call. Not while a texture of the material is being made.
    void applyStateString(const kvString::CString& state);

private:
    friend class SubstanceInput; // enters and leaves livingInputs

    void listenTo(SubstanceEntity& entity);

    kv::StringTable<kv::Reference<SubstanceOutput>> outputs;
    kv::StringTable<kv::Reference<SubstanceInput>> inputs;
    kv::UnsignedTable<kv::Reference<SubstanceEntity>> entities; // every input and output
    kv::vector<kvString::CString> inputIds;
    kvString::CString packageURL;
    kvString::IString label;
    SubstanceAir::PackageStackDesc* packageStack = nullptr;
    SubstanceAir::PackageDesc* firstPackage = nullptr;
    SubstanceAir::PackageDesc* secondPackage = nullptr;
    std::vector<boost::shared_ptr<SubstanceAir::GraphInstance>> graphInstances;
    kv::TempReference<ilSIDImage> cachedTexture;
    std::unordered_set<SubstanceInput*> livingInputs; // all that name this material as their owner
};

} // namespace kvSubstance
