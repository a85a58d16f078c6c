// Any bytes as an assembly. The engine runs what the verifier accepts and refuses the rest; what it runs it
// renders under the rules of its interface, whatever values its inputs are given. An accepted program keeps
// its meaning when it is written and read again.
//
// The assembly stands at the front of an input; its end, read backwards, chooses values of inputs.
#include "embedded/program/Assembly.h"
#include "embedded/program/Seams.h"
#include "fuzzers/SmallRender.h"

using namespace fuzzing;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Choices values = Choices::backwards(data, size);
    if (!renderSmall(data, size, values)) return 0;
    const auto program = embedded::decodeAssembly(data, size);
    require(embedded::findSeams(*program).size() == program->outputs.size(), "each output has its seams");
    const Bytes written = embedded::encodeAssembly(*program);
    const auto again = embedded::decodeAssembly(written.data(), written.size());
    require(again && embedded::encodeAssembly(*again) == written, "a program is written as it was read");
    return 0;
}
