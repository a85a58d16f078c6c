/// @file
/// Builds a material from the description that accompanies a package: inputs and outputs, without an engine.
///
///     <sbsdescription content="full">
///       <graphs count="1">
///         <graph pkgurl="pkg://brick" label="Brick">
///           <outputs>
///             <output uid="1" identifier="basecolor" format="0" width="512" height="512" mipmaps="1"/>
///           </outputs>
///           <inputs>
///             <input uid="2" identifier="mortar" type="0" default="0.1" alteroutputs="1">
///               <inputgui widget="slider" label="Mortar"><guislider min="0" max="1" step="0.01"
///               clamp="on"/></inputgui>
///             </input>
///           </inputs>
///         </graph>
///       </graphs>
///     </sbsdescription>
///
/// Only the first graph is read. What stands above is required, but for the elements inside both lists, for
/// defaults, altered outputs and the GUI, of which the widget is required. An output may also have
/// dynamicsize="yes". Type codes are those of platform/engine.h (SubstanceInputFloat and so on); any other is
/// a float.
#pragma once

#include "material/SubstanceInput.h"

class TiXmlDocument;
class TiXmlElement;
class TiXmlNode;

namespace kvSubstance {

class Substance;

/// Reads descriptions. Keeps nothing between calls, so that any thread may use it at any time.
class KVSUBSTANCE_API SubstanceReader {
public:
    /// The one reader of the process, made on first use and destroyed at exit.
    static SubstanceReader& getInstance();

    /// @{
    /// Copies are as good as the one reader.
    SubstanceReader(const SubstanceReader&) = default;
    SubstanceReader& operator=(const SubstanceReader&) = default;
    /// @}

    /// Reads a zero-terminated document. The new material has every value at its default and nothing
    /// modified. An empty reference when the text is null or no well-formed document, or when anything
    /// required is missing.
    kv::Reference<Substance> readFromXMLData(const char* xmlText);

protected:
    SubstanceReader() = default;
    virtual ~SubstanceReader();

private:
    // Each step is true on success.
    bool readXMLDocument(const TiXmlDocument& document, Substance& material);
    bool readXMLGraph(const TiXmlNode* graph, Substance& material);
    bool readXMLOutput(const TiXmlElement* element, Substance& material);
    bool readXMLInput(const TiXmlElement* element, Substance& material);
    bool readXMLInputGui(const TiXmlElement* element, SubstanceInput& input);
    void readXMLInputDependencies(const TiXmlElement* element, Substance& material, SubstanceInput& input);
    void parseValues(const char* text, SubstanceInput& input, SubstanceInput::IntOrFloat& target);
};

} // namespace kvSubstance
