// Several programs on their way to becoming one.
#pragma once

#include "embedded/program/Program.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace embedded {

// Programs are appended first to last. What refers to inputs and outputs names them by uid; where programs
// share uids, earlier programs are searched before later ones. An operation that gives false changes nothing.
class LinkedProgram {
public:
    // False when the whole would grow beyond the limits of Verifier.h.
    bool append(const Program& program);

    // For each output of this uid. More levels than any texture has are as many as the largest has.
    bool setOutputFormat(std::uint32_t outputUid, std::int32_t format, std::uint32_t mipmaps);

    bool hasOutput(std::uint32_t outputUid) const;

    // Feeds an image input of a later program from an output of an earlier one; the input disappears.
    bool connect(std::uint32_t inputUid, std::uint32_t outputUid);

    // Makes the first input drive what the second one drove; the second disappears. They have the same type.
    // The second is looked for in the programs after the first's before it is in any other.
    bool fuse(std::uint32_t firstUid, std::uint32_t secondUid);

    // The whole so far, or nothing if there is none. Inputs that share uid and type, as those of a graph
    // stacked on itself do, have become one; of outputs that share a uid, the last one is left: the one on
    // top of the stack.
    std::optional<Program> result() const;

private:
    std::optional<std::size_t> findInput(std::uint32_t uid, std::size_t firstIndex,
                                         std::size_t firstPart) const;
    bool feed(std::size_t input, std::int32_t source);

    struct Origin {
        std::size_t part = 0; // which of the appended programs
        bool removed = false;
    };
    Program merged;
    std::vector<Origin> inputOrigins;    // one for each input
    std::vector<std::size_t> outputPart; // one for each output
    std::size_t partCount = 0;
};

} // namespace embedded
