// The chief header of the material model: a material with its inputs and outputs, and the reader of host-side
// descriptions.
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

// One material: its inputs and outputs, found by identifier or by uid, the engine's objects that render it,
// and the last texture that came of it. It is an entity itself, with uid 0 and no identifier: a change of any
// of its entities marks it modified and calls its listeners.
//
// Materials come from createSubstance or from SubstanceReader; a host may also fill one by hand. They own
// their entities. Packages and the package stack are borrowed.
class KVSUBSTANCE_API Substance : public SubstanceEntity {
public:
    Substance();

    // Entities that somebody else holds live on without the material.
    ~Substance() override;

    // Creates an entity, which the material owns, and listens to it. An earlier entity of the same
    // identifier, or of the same uid, is no longer found under it and is let go; input ids are listed all the
    // same.
    SubstanceInput* newInput(unsigned int uid, const kvString::CString& identifier, Type type);
    SubstanceOutput* newOutput(unsigned int uid, const kvString::CString& identifier, Format format,
                               int xSize, int ySize, int numMipMaps, bool dynamicSize);

    // Null when there is none.
    SubstanceInput* getInput(const kvString::CString& identifier) const;
    SubstanceOutput* getOutput(const kvString::CString& identifier) const;
    SubstanceEntity* getEntity(unsigned int uid) const; // an input or an output

    int numInputs() const { return inputs.count(); }
    int numOutputs() const { return outputs.count(); }

    // The identifiers given to newInput, in the order of the calls, repeated ones included.
    const kv::vector<kvString::CString>& getInputIds() const { return inputIds; }

    // Resets every input to its default, in the order in which their identifiers first came up. Listeners are
    // called for each component that changes.
    void reset();

    // Marks the material and all its entities unmodified; no listener is told.
    void clearModified() override;

    // Names the package graph that the material was made from.
    void setPackageURL(kvString::CString url) { packageURL = std::move(url); }
    const kvString::CString& getPackageURL() const { return packageURL; }

    void setLabel(kvString::IString text) { label = std::move(text); }
    const kvString::IString& getLabel() const { return label; }

    // What the material is rendered from, all null for a material without an engine. Borrowed: they outlive
    // the material, and nothing here deletes them.
    void setPackageDesc(SubstanceAir::PackageStackDesc* stack, SubstanceAir::PackageDesc* first,
                        SubstanceAir::PackageDesc* second);
    SubstanceAir::PackageStackDesc* getPackageStackDesc() const { return packageStack; }

    // The engine-side graphs, shared; the list itself, to fill and to use.
    std::vector<boost::shared_ptr<SubstanceAir::GraphInstance>>& getGraphInstances() {
        return graphInstances;
    }

    // The last texture, of which the material holds one temporary reference; an empty reference drops it.
    kv::TempReference<ilSIDImage> getCachedTexture() const { return cachedTexture; }
    void setCachedTexture(kv::TempReference<ilSIDImage> texture) { cachedTexture = std::move(texture); }

    // The values of all inputs but images as text, to be stored and applied again later: the package URL,
    // then one line for each input, each ended by a line feed.
    //
    //     pkg:/brick
    //     7d f2 0.500000 1.000000
    //     9d i1 3
    //
    // A line holds the uid with a "d" behind it, "i" or "f" with the number of components, and the
    // components. Floats have six decimals; the text is the same in every locale.
    kvString::CString getStateString() const;

    // Sets the values that a state string holds, through the ordinary setters, and hands them to the engine.
    // Text of another package URL changes nothing; lines of unknown uids are passed over. Missing or
    // unreadable numbers are 0. The material must be held by a reference; a listener may drop it during the
    // call.
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
