#include "embedded/nodes/Scatter.h"

#include "embedded/nodes/CellAxis.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"
#include "embedded/rows/ScatterRows.h"

#include <algorithm>
#include <cmath>

namespace embedded {
namespace {

enum Port { Pattern, Mask };
enum Parameter { Repeats, Amount, Copies, Size, Jitter, Rotation, Turn, Darkening, Overlap, Seed };
enum OverlapChoice { Lighten, Add, Over, Shingles };

// A copy's middle is in its cell, and it reaches less than 2 cells from there: up to 2 cells of size, turned,
// and a pixel, of which a cell has at least two.
constexpr int cellReach = 2;

constexpr float smallestSide = 1.0f / 64; // smaller copies leave nothing

struct Copy {
    ScatterCopy drawn;
    float reach; // from the middle to where nothing is left, across and down, in pixels
    int level;   // of the pattern
    std::uint32_t order;
};

// The pattern's middle square, and as many times halved as copies need it: a copy reads where there are about
// as many samples as it has pixels. Level 0 is the pattern itself; of colours a premultiplied copy, if it is
// read.
class PatternLevels {
public:
    PatternLevels(const ImageView& pattern, float smallest, float largest,
                  const std::shared_ptr<ImageMemory>& memory)
        : pattern_(pattern)
        , size_(std::min(pattern.width(), pattern.height()))
        , firstMade_(hasAlpha() && levelFor(largest) == 0 ? 0 : 1)
        , levels_(static_cast<std::size_t>(levelFor(smallest)) + 1) {
        for (int level = firstMade_; level < count(); ++level)
            levels_[static_cast<std::size_t>(level)] =
                Image(sizeOf(level), sizeOf(level), pattern.channels(), memory);
    }

    // Those from the first one that is made have to be computed, in their order.
    int firstMade() const { return firstMade_; }
    int count() const { return static_cast<int>(levels_.size()); }
    int sizeOf(int level) const { return size_ >> level; }

    int levelFor(float side) const {
        int level = 0;
        while (sizeOf(level) > 1 && static_cast<float>(sizeOf(level)) > 1.41421356f * side) ++level;
        return level;
    }

    void computeRow(int level, int y) {
        Image& image = levels_[static_cast<std::size_t>(level)];
        for (int c = 0; c < image.channels(); ++c) {
            // What is made first, from colours, gets premultiplied.
            const bool isWeighed = level == firstMade_ && hasAlpha() && c < alpha;
            if (level > 0)
                halveSquareRow.chosen()(row(level - 1, 2 * y, c), row(level - 1, 2 * y + 1, c),
                                        isWeighed ? row(level - 1, 2 * y, alpha) : nullptr,
                                        isWeighed ? row(level - 1, 2 * y + 1, alpha) : nullptr, image.width(),
                                        image.row(y, c));
            else if (isWeighed)
                premultiplyRow.chosen()(patternRow(y, c), patternRow(y, alpha), image.width(),
                                        image.row(y, c));
            else
                std::copy_n(patternRow(y, c), image.width(), image.row(y, c));
        }
    }

    ScatterPattern at(int level) const {
        ScatterPattern pattern{};
        for (int c = 0; c < pattern_.channels(); ++c) pattern.channels[c] = row(level, 0, c);
        pattern.stride = level < firstMade_ ? pattern_.plane(0).stride
                                            : levels_[static_cast<std::size_t>(level)].plane(0).stride;
        pattern.size = sizeOf(level);
        return pattern;
    }

private:
    static constexpr int alpha = 3;

    bool hasAlpha() const { return pattern_.channels() > alpha; }

    const float* row(int level, int y, int c) const {
        return level < firstMade_ ? patternRow(y, c) : levels_[static_cast<std::size_t>(level)].row(y, c);
    }

    const float* patternRow(int y, int c) const {
        return pattern_.row(y + (pattern_.height() - size_) / 2, c) + (pattern_.width() - size_) / 2;
    }

    ImageView pattern_;
    int size_;
    int firstMade_;
    std::vector<Image> levels_;
};

// Cells are at least two pixels wide and high where the image is.
int cellCount(int wanted, int size) {
    return std::min(wanted, std::max(size / 2, 1));
}

// The copies of all cells, by rows of cells.
class CopyTable {
public:
    explicit CopyTable(const NodeRun& run)
        : run_(run)
        , columns_(cellCount(run.integer(Repeats, 0), run.width))
        , rows_(cellCount(run.integer(Repeats, 1), run.height))
        , cellWidth_(static_cast<float>(run.width) / static_cast<float>(columns_))
        , cellHeight_(static_cast<float>(run.height) / static_cast<float>(rows_))
        , copies_(static_cast<std::size_t>(rows_)) {}

    int columns() const { return columns_; }
    int rows() const { return rows_; }
    const std::vector<Copy>& row(int row) const { return copies_[static_cast<std::size_t>(row)]; }

    // In pixels, of a size in cells.
    float sideOf(float size) const { return size * std::min(cellWidth_, cellHeight_); }

    void computeRow(int row, const PatternLevels& levels) {
        std::vector<Copy>& copies = copies_[static_cast<std::size_t>(row)];
        copies.clear();
        for (int column = 0; column < columns_; ++column)
            for (int i = 0; i < run_.integer(Copies); ++i) addCopy(column, row, i, levels, copies);
    }

private:
    void addCopy(int column, int row, int index, const PatternLevels& levels,
                 std::vector<Copy>& copies) const {
        const auto cell = static_cast<std::uint32_t>(columns_) * static_cast<std::uint32_t>(row) +
                          static_cast<std::uint32_t>(column);
        const Hash3 place =
            hash(cell, static_cast<std::uint32_t>(index), static_cast<std::uint32_t>(run_.integer(Seed)));
        const Hash3 look = hash(place.x, place.y, place.z);
        const Hash3 rest = hash(look.x, look.y, look.z);
        const float jitter = run_.number(Jitter);
        Copy copy{};
        copy.drawn.x =
            (static_cast<float>(column) + 0.5f + jitter * (unitFloat(place.x) - 0.5f)) * cellWidth_;
        copy.drawn.y = (static_cast<float>(row) + 0.5f + jitter * (unitFloat(place.y) - 0.5f)) * cellHeight_;
        copy.drawn.side = sideOf(mix(run_.number(Size, 0), run_.number(Size, 1), unitFloat(look.x)));
        if (copy.drawn.side < smallestSide) return;
        if (!(unitFloat(place.z) < run_.number(Amount) * maskAt(copy.drawn.x, copy.drawn.y))) return;
        const float turns = run_.number(Rotation) + run_.number(Turn) * (unitFloat(look.y) - 0.5f);
        copy.drawn.cosine = cosineOfTurns(turns);
        copy.drawn.sine = sineOfTurns(turns);
        copy.drawn.brightness = 1.0f - run_.number(Darkening) * unitFloat(look.z);
        copy.reach =
            0.5f * (copy.drawn.side + 1.0f) * (absolute(copy.drawn.cosine) + absolute(copy.drawn.sine));
        copy.level = levels.levelFor(copy.drawn.side);
        copy.order = rest.x;
        copies.push_back(copy);
    }

    float maskAt(float x, float y) const {
        const ImageView& mask = run_.images[Mask];
        if (!mask) return 1.0f;
        return mask.row(static_cast<int>(y) & (run_.height - 1))[static_cast<int>(x) & (run_.width - 1)];
    }

    const NodeRun& run_;
    int columns_;
    int rows_;
    float cellWidth_; // in pixels
    float cellHeight_;
    std::vector<std::vector<Copy>> copies_;
};

// Where a copy meets a row of pixels, perhaps a pixel more at each end.
struct Span {
    int begin;
    int end;
};

// Keeps of low to high where slope * x + offset is from -half to half.
void narrow(float slope, float offset, float half, float& low, float& high) {
    if (absolute(slope) < 1e-4f) return;
    const float first = (-half - offset) / slope;
    const float last = (half - offset) / slope;
    low = std::max(low, std::min(first, last));
    high = std::min(high, std::max(first, last));
}

Span spanOf(const Copy& copy, int y, int width) {
    const float dy = static_cast<float>(y) + 0.5f - copy.drawn.y;
    const float half = 0.5f * (copy.drawn.side + 1.0f);
    float low = -copy.reach;
    float high = copy.reach;
    narrow(copy.drawn.cosine, dy * copy.drawn.sine, half, low, high);
    narrow(-copy.drawn.sine, dy * copy.drawn.cosine, half, low, high);
    if (low > high) return {0, 0};
    const float last = static_cast<float>(width);
    return {static_cast<int>(clamp(copy.drawn.x + low - 1.0f, 0.0f, last)),
            static_cast<int>(clamp(copy.drawn.x + high + 1.0f, 0.0f, last))};
}

class Scattering : public ImageKernel {
public:
    explicit Scattering(const NodeRun& run)
        : run_(run)
        , overlap_(run.integer(Overlap))
        , copies_(run)
        , levels_(run.images[Pattern],
                  std::max(copies_.sideOf(std::min(run.number(Size, 0), run.number(Size, 1))), smallestSide),
                  copies_.sideOf(std::max(run.number(Size, 0), run.number(Size, 1))), run.memory)
        , down_(run.height, copies_.rows()) {}

    int passCount() const override { return 2 + levels_.count() - levels_.firstMade(); }

    int rowCount(int pass) const override {
        return isLast(pass) ? run_.height : pass > 0 ? levels_.sizeOf(levelOf(pass)) : copies_.rows();
    }

    int rowSamples(int pass) const override {
        if (isLast(pass)) return run_.width * run_.channels;
        return pass > 0 ? levels_.sizeOf(levelOf(pass)) * run_.channels
                        : copies_.columns() * run_.integer(Copies) * 16;
    }

    // First the copies, then the levels of the pattern, then the rows of the result.
    void computeRows(int pass, int begin, int end, Image& result) override {
        if (isLast(pass)) return draw(begin, end, result);
        for (int y = begin; y < end; ++y) {
            if (pass == 0)
                copies_.computeRow(y, levels_);
            else
                levels_.computeRow(levelOf(pass), y);
        }
    }

private:
    bool isLast(int pass) const { return pass + 1 == passCount(); }
    int levelOf(int pass) const { return levels_.firstMade() + pass - 1; }

    void draw(int begin, int end, Image& result) const {
        std::vector<ScatterPattern> patterns;
        patterns.reserve(static_cast<std::size_t>(levels_.count()));
        for (int level = 0; level < levels_.count(); ++level) patterns.push_back(levels_.at(level));
        const ScatterOverlap overlap = overlap_ == Lighten ? ScatterOverlap::Lighten
                                       : overlap_ == Add   ? ScatterOverlap::Add
                                                           : ScatterOverlap::Over;
        std::vector<Copy> near;
        for (int y = begin, row = -1; y < end; ++y) {
            if (down_.cellAt(y) != row) {
                row = down_.cellAt(y);
                near = copiesNear(row);
            }
            float* channels[4] = {};
            for (int c = 0; c < result.channels(); ++c) {
                channels[c] = result.row(y, c);
                std::fill_n(channels[c], run_.width, 0.0f);
            }
            for (const Copy& copy : near) {
                if (absolute(static_cast<float>(y) + 0.5f - copy.drawn.y) > copy.reach) continue;
                const Span span = spanOf(copy, y, run_.width);
                scatterRow.chosen()(copy.drawn, patterns[static_cast<std::size_t>(copy.level)], overlap,
                                    result.channels(), y, span.begin, span.end - span.begin, channels);
            }
            if (result.channels() == 4) unpremultiplyRow.chosen()(run_.width, channels);
        }
    }

    // In the order of drawing, those that may reach into a row of cells, also from beyond the image's edges:
    // row by row from above, in each from the left. That order is the same everywhere, so the image tiles.
    std::vector<Copy> copiesNear(int row) const {
        const auto top = static_cast<float>(down_.firstPixels[static_cast<std::size_t>(row)]);
        const auto bottom = static_cast<float>(down_.firstPixels[static_cast<std::size_t>(row) + 1]);
        std::vector<Copy> near;
        for (int r = row - cellReach; r <= row + cellReach; ++r) {
            const int wrapped = (r + cellReach * copies_.rows()) % copies_.rows();
            const int periodDown = (r - wrapped) / copies_.rows();
            const auto shiftDown = static_cast<float>(periodDown * run_.height);
            for (int period = -cellReach; period <= cellReach; ++period) {
                const auto shiftAcross = static_cast<float>(period * run_.width);
                for (Copy copy : copies_.row(wrapped)) {
                    copy.drawn.x += shiftAcross;
                    copy.drawn.y += shiftDown;
                    if (copy.drawn.x + copy.reach > 0 &&
                        copy.drawn.x - copy.reach < static_cast<float>(run_.width) &&
                        copy.drawn.y + copy.reach > top && copy.drawn.y - copy.reach < bottom)
                        near.push_back(copy);
                }
            }
        }
        if (overlap_ == Over)
            std::stable_sort(near.begin(), near.end(),
                             [](const Copy& a, const Copy& b) { return a.order < b.order; });
        return near;
    }

    const NodeRun& run_;
    int overlap_;
    CopyTable copies_;
    PatternLevels levels_;
    CellAxis down_;
};

std::unique_ptr<ImageKernel> prepare(const NodeRun& run) {
    return std::make_unique<Scattering>(run);
}

// Between the copies nothing covers.
bool hasAlpha(const std::vector<Value>&, const std::vector<int>&) {
    return true;
}

const NodeKernel kernel{nullptr, prepare};

} // namespace

NodeKind scatterKind() {
    ParameterInfo size =
        number("size", ValueType::Float2, 1, 0, 2,
               "least and largest size of a copy, relative to the cell's shorter side; sizes "
               "between are equally likely");
    size.defaultValue = {0.75, 1, 0, 0};
    return {
        23,
        "scatter",
        "A pattern placed many times, with random place, size, turn and brightness, on black; of colours on "
        "nothing, with alpha. A copy shows the whole pattern, of one that is not square the middle square.",
        {{"pattern", PortChannels::Any, true, anywhere}, {"mask", PortChannels::Gray, false, anywhere}},
        {number("repeats", ValueType::Integer2, 4, 1, 256, "cells across and down, of two pixels at least"),
         number(
             "amount", ValueType::Float, 1, 0, 1,
             "share of the copies that are there; where a mask is connected, times its value at the copy's "
             "middle"),
         number("copies", ValueType::Integer, 1, 1, 4, "copies in each cell"), size,
         number("jitter", ValueType::Float, 0.5, 0, 1,
                "0: copies in the middle of their cells; 1: anywhere in them"),
         number("rotation", ValueType::Float, 0, -1, 1, "turns of all copies, clockwise"),
         number("turn", ValueType::Float, 1, 0, 1,
                "range of the random turn around the rotation; 1: any direction"),
         number("darkening", ValueType::Float, 0, 0, 1, "most by which a copy is darker, at random"),
         choice("overlap", {"lighten", "add", "over", "shingles"}, 0,
                "the brighter one, the sum, one covering the other in random order, or lower ones covering "
                "upper ones and right ones covering left ones; gray copies cover as much as the pattern is "
                "bright"),
         seedParameter()},
        ResultChannels::Widest,
        hasAlpha,
        nullptr,
        2000,
        &kernel};
}

} // namespace embedded
