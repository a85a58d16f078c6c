#include "tools/Table.h"

#include <algorithm>
#include <ostream>

namespace tool {
namespace {

constexpr int gap = 2; // blanks between columns

// Characters of UTF-8 text: bytes that do not continue one.
size_t columnsOf(const std::string& text) {
    return static_cast<size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

} // namespace

Table::Table(std::vector<std::string> headings)
    : rows{std::move(headings)} {}

void Table::add(std::vector<std::string> row) {
    for (std::string& text : row)
        if (text.empty()) text = "-";
    rows.push_back(std::move(row));
}

void Table::print(std::ostream& out, int indent) const {
    if (rows.size() == 1) return;
    std::vector<size_t> widths(rows.front().size(), 0);
    for (const auto& row : rows)
        for (size_t i = 0; i < widths.size(); ++i) widths[i] = std::max(widths[i], columnsOf(row[i]));
    for (const auto& row : rows) {
        std::string line(static_cast<size_t>(indent), ' ');
        for (size_t i = 0; i < row.size(); ++i) {
            line += row[i];
            if (i + 1 < row.size()) line.append(widths[i] + gap - columnsOf(row[i]), ' ');
        }
        out << line << '\n';
    }
}

} // namespace tool
