// Receipts: what a picture says about how it came to be, so that it can be made again and compared.
#pragma once

#include "framework/render/GraphInstance.h"
#include "tools/PackageFile.h"
#include "tools/Picture.h"

#include <boost/shared_ptr.hpp>

#include <string>
#include <vector>

namespace tool {

using GraphInstances = std::vector<boost::shared_ptr<SubstanceAir::GraphInstance>>;

struct PackageMark {
    std::string name; // the file's, without folders
    std::string digest;
};

// A value as the engine got it. The text reads back as the very same number.
struct ValueMark {
    unsigned int uid = 0;
    std::string input;
    std::string value;
};

struct SheetMark {
    std::string label;
    std::string digest; // of the picture's pixels, before it was made small
};

// A sheet has marks of pictures; a map has the graph and the output that it is of; all others are renders,
// of two packages, or of one and the channel that is shown.
struct Receipt {
    std::vector<PackageMark> packages;
    std::string graph; // its URL
    std::string output;
    std::string channel;
    std::vector<ValueMark> values;
    std::vector<SheetMark> pictures;
    int width = 0; // pixels
    int height = 0;
    int engineRevision = 0;
    std::string pixels; // digest of the samples

    bool isSheet() const { return !pictures.empty(); }
    bool isMap() const { return !graph.empty(); }
};

PackageMark markOf(const PackageFile& package);

// Every number among the inputs.
std::vector<ValueMark> valuesOf(const GraphInstances& graphs);

// Sets what can be set and returns, a line each, what cannot and why.
std::vector<std::string> applyValues(const GraphInstances& graphs, const std::vector<ValueMark>& values);

// Adds what the texture and the engine have to say.
Receipt completed(Receipt receipt, const Texture& texture);

std::string sheetReceipt(const Texture& sheet, std::vector<SheetMark> pictures);

// One line of ASCII. Throws Failure for what is no receipt; the message begins with the place.
std::string toText(const Receipt& receipt);
Receipt parseReceipt(const std::string& text, const std::string& place);

} // namespace tool
