#include "tools/Receipt.h"

#include "embedded/compiler/Literal.h"
#include "embedded/engine/Revision.h"
#include "tools/Digest.h"
#include "tools/Failure.h"
#include "tools/FileContent.h"
#include "tools/FileNames.h"

#include <nlohmann/json.hpp>

#include <cstring>

namespace tool {
namespace {

using nlohmann::ordered_json;
using SubstanceAir::InputInstanceBase;
using SubstanceAir::InputInstanceNumericalBase;

constexpr int receiptVersion = 1;

std::string exactText(const InputInstanceBase& input) {
    embedded::Value value;
    value.type = static_cast<embedded::ValueType>(input.desc.type);
    if (embedded::isInteger(value.type))
        std::memcpy(value.integers.data(), input.rawData(), input.rawSize());
    else
        std::memcpy(value.floats.data(), input.rawData(), input.rawSize());
    return embedded::formatValue(value);
}

// Null when there is none that is a number.
InputInstanceNumericalBase* findInput(const GraphInstances& graphs, const ValueMark& mark) {
    for (const auto& graph : graphs)
        for (const auto& input : graph->inputs)
            if (input->desc.uid == mark.uid && input->desc.identifier == mark.input)
                return dynamic_cast<InputInstanceNumericalBase*>(input.get());
    return nullptr;
}

void putText(ordered_json& json, const char* name, const std::string& text) {
    if (!text.empty()) json[name] = text;
}

std::string textAt(const ordered_json& json, const char* name) {
    return json.contains(name) ? json.at(name).get<std::string>() : "";
}

ordered_json listAt(const ordered_json& json, const char* name) {
    return json.contains(name) ? json.at(name) : ordered_json::array();
}

Receipt receiptFrom(const ordered_json& json) {
    Receipt receipt;
    for (const ordered_json& entry : listAt(json, "packages"))
        receipt.packages.push_back({textAt(entry, "file"), textAt(entry, "digest")});
    receipt.graph = textAt(json, "graph");
    receipt.output = textAt(json, "output");
    receipt.channel = textAt(json, "channel");
    for (const ordered_json& entry : listAt(json, "values"))
        receipt.values.push_back(
            {entry.at("uid").get<unsigned int>(), textAt(entry, "input"), textAt(entry, "value")});
    for (const ordered_json& entry : listAt(json, "pictures"))
        receipt.pictures.push_back({textAt(entry, "label"), textAt(entry, "pixels")});
    receipt.width = json.at("width").get<int>();
    receipt.height = json.at("height").get<int>();
    receipt.engineRevision = json.value("engineRevision", 0);
    receipt.pixels = json.at("pixels").get<std::string>();
    return receipt;
}

} // namespace

PackageMark markOf(const PackageFile& package) {
    return {textOf(pathOf(package.name).filename()), digestOf(asText(package.bytes))};
}

std::vector<ValueMark> valuesOf(const GraphInstances& graphs) {
    std::vector<ValueMark> values;
    for (const auto& graph : graphs)
        for (const auto& input : graph->inputs)
            if (input->desc.isNumerical())
                values.push_back({input->desc.uid, input->desc.identifier, exactText(*input)});
    return values;
}

std::vector<std::string> applyValues(const GraphInstances& graphs, const std::vector<ValueMark>& values) {
    std::vector<std::string> refused;
    std::string missing;
    for (const ValueMark& mark : values) {
        InputInstanceNumericalBase* const input = findInput(graphs, mark);
        if (!input)
            missing += (missing.empty() ? "" : ", ") + mark.input;
        else if (!input->setValueFromText(mark.value))
            refused.push_back(mark.input + " does not take \"" + mark.value + "\"");
    }
    if (!missing.empty()) refused.push_back("there is nothing to set under the names and uids of " + missing);
    return refused;
}

Receipt completed(Receipt receipt, const Texture& texture) {
    receipt.width = texture.width;
    receipt.height = texture.height;
    receipt.engineRevision = embedded::engineRevision;
    receipt.pixels = digestOf(texture);
    return receipt;
}

std::string sheetReceipt(const Texture& sheet, std::vector<SheetMark> pictures) {
    Receipt receipt;
    receipt.pictures = std::move(pictures);
    return toText(completed(std::move(receipt), sheet));
}

std::string toText(const Receipt& receipt) {
    ordered_json json{{"receipt", receiptVersion}};
    for (const PackageMark& package : receipt.packages)
        json["packages"].push_back({{"file", package.name}, {"digest", package.digest}});
    putText(json, "graph", receipt.graph);
    putText(json, "output", receipt.output);
    putText(json, "channel", receipt.channel);
    for (const ValueMark& mark : receipt.values)
        json["values"].push_back({{"uid", mark.uid}, {"input", mark.input}, {"value", mark.value}});
    for (const SheetMark& picture : receipt.pictures)
        json["pictures"].push_back({{"label", picture.label}, {"pixels", picture.digest}});
    json["width"] = receipt.width;
    json["height"] = receipt.height;
    json["engineRevision"] = receipt.engineRevision;
    json["pixels"] = receipt.pixels;
    return json.dump(-1, ' ', true, ordered_json::error_handler_t::replace);
}

Receipt parseReceipt(const std::string& text, const std::string& place) {
    try {
        const ordered_json json = ordered_json::parse(text);
        if (json.at("receipt").get<int>() == receiptVersion) return receiptFrom(json);
    } catch (const ordered_json::exception&) {
        throw Failure(place + ": its receipt is damaged, so it cannot be made again");
    }
    throw Failure(place + ": its receipt is of a version that this tool does not know");
}

} // namespace tool
