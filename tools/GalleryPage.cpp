#include "tools/GalleryPage.h"

#include <algorithm>
#include <cmath>

namespace tool {
namespace {

constexpr const char* head = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Sample materials</title>
<style>
:root { color-scheme: light dark; --line: #8884; --soft: #8882; }
body { font: 16px/1.5 system-ui, sans-serif; max-width: 1180px; margin: 0 auto; padding: 1rem 1.5rem 4rem;
       background: #fafafa; color: #222; }
a { color: inherit; }
nav { display: flex; flex-wrap: wrap; gap: .4rem 1.2rem; }
section { border-top: 1px solid var(--line); margin-top: 2.5rem; }
h2 { margin-bottom: .5rem; }
h3 { margin: 1.5rem 0 .5rem; }
figure { margin: 0; }
figcaption { font-size: .85rem; }
figcaption span { display: block; opacity: .75; }
img { display: block; width: 100%; height: auto; border-radius: 4px; background: var(--soft); }
.first { max-width: 512px; }
.row { display: grid; grid-template-columns: repeat(auto-fill, minmax(170px, 1fr)); gap: 1rem; }
.wide { overflow-x: auto; }
table { border-collapse: collapse; font-size: .9rem; }
th, td { text-align: left; vertical-align: top; padding: .3rem .9rem .3rem 0; border-bottom: 1px solid var(--line); }
code { font-size: .85em; opacity: .75; }
.swatch { display: inline-block; width: 1em; height: 1em; border: 1px solid var(--line); vertical-align: -.15em; }
@media (prefers-color-scheme: dark) { body { background: #1b1b1d; color: #ddd; } }
</style>
</head>
<body>
<h1>Sample materials</h1>
)";

std::string escaped(const std::string& text) {
    std::string html;
    for (const char c : text) {
        if (c == '&')
            html += "&amp;";
        else if (c == '<')
            html += "&lt;";
        else if (c == '>')
            html += "&gt;";
        else if (c == '"')
            html += "&quot;";
        else
            html += c;
    }
    return html;
}

std::string titleOf(const GallerySample& sample) {
    return escaped(sample.graph.label.empty() ? sample.name : sample.graph.label);
}

std::string figure(const GalleryPicture& picture, const std::string& attributes) {
    return "<figure" + attributes + "><a href=\"" + picture.file + "\"><img src=\"" + picture.file +
           "\" alt=\"" + escaped(picture.title) + "\" loading=\"lazy\"></a><figcaption>" +
           escaped(picture.title) +
           (picture.text.empty() ? "" : "<span>" + escaped(picture.text) + "</span>") +
           "</figcaption></figure>\n";
}

std::string figures(const std::string& heading, const std::vector<GalleryPicture>& pictures) {
    if (pictures.empty()) return "";
    std::string html = "<h3>" + heading + "</h3>\n<div class=\"row\">\n";
    for (const GalleryPicture& picture : pictures) html += figure(picture, "");
    return html + "</div>\n";
}

std::string swatch(const std::vector<double>& colour) {
    std::string bytes;
    for (size_t i = 0; i < 3; ++i)
        bytes += (i ? "," : "") + std::to_string(std::lround(std::clamp(colour[i], 0.0, 1.0) * 255));
    return "<span class=\"swatch\" style=\"background:rgb(" + bytes + ")\"></span> ";
}

std::string defaultCell(const InputSummary& input) {
    for (const auto& [value, text] : input.comboItems)
        if (!input.defaultValue.empty() && value == std::lround(input.defaultValue.front()))
            return escaped(text);
    const bool isColour = input.widget == "color" && input.defaultValue.size() >= 3;
    return (isColour ? swatch(input.defaultValue) : "") + escaped(defaultText(input));
}

std::string rangeCell(const InputSummary& input) {
    if (input.comboItems.empty()) return escaped(rangeText(input));
    std::string choices;
    for (const auto& [value, text] : input.comboItems) choices += (choices.empty() ? "" : ", ") + text;
    return escaped(choices);
}

std::string inputTable(const std::vector<InputSummary>& inputs) {
    if (inputs.empty()) return "";
    std::string html = "<h3>Inputs</h3>\n<div class=\"wide\"><table>\n<tr><th>Input</th><th>Type</th>"
                       "<th>Range</th><th>Default</th><th>Description</th></tr>\n";
    for (const InputSummary& input : inputs) {
        const bool hasLabel = !input.label.empty() && input.label != input.identifier;
        html += "<tr><td>" + (hasLabel ? escaped(input.label) + " " : "") + "<code>" +
                escaped(input.identifier) + "</code></td><td>" + escaped(input.type) + "</td><td>" +
                rangeCell(input) + "</td><td>" + defaultCell(input) + "</td><td>" +
                escaped(input.description) + "</td></tr>\n";
    }
    return html + "</table></div>\n";
}

} // namespace

std::string makeGalleryPage(const std::vector<GallerySample>& samples) {
    std::string html = head;
    html += "<nav>\n";
    for (const GallerySample& sample : samples)
        html += "<a href=\"#" + sample.name + "\">" + titleOf(sample) + "</a>\n";
    html += "</nav>\n";
    for (const GallerySample& sample : samples)
        html += "<section id=\"" + sample.name + "\">\n<h2>" + titleOf(sample) + "</h2>\n" +
                figure(sample.picture, " class=\"first\"") + figures("Maps", sample.maps) +
                figures("Presets", sample.presets) + inputTable(sample.graph.inputs) + "</section>\n";
    return html + "</body>\n</html>\n";
}

} // namespace tool
