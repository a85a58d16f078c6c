#include "conformance/Interface.h"

namespace kvSubstance::conformance {

Interface linkedInterface() {
    return {{substanceLinkerContextInit, substanceLinkerContextSetCallback, substanceLinkerContextRelease,
             substanceLinkerHandleInit, substanceLinkerHandlePushAssemblyMemory,
             substanceLinkerHandleSetOutputFormat, substanceLinkerConnectOutputToInput,
             substanceLinkerHandleSelectOutputs, substanceLinkerFuseInputs, substanceLinkerHandleLink,
             substanceLinkerHandleRelease},
            {substanceContextInit, substanceContextSetCallback, substanceContextRelease,
             substanceContextMemoryFree, substanceHandleInit, substanceHandleGetDesc,
             substanceHandleGetInputDesc, substanceHandleGetOutputDesc, substanceHandleGetOutputs,
             substanceHandleGetParentContext, substanceHandlePushSetInput, substanceHandlePushOutputs,
             substanceHandleStart, substanceHandleRelease}};
}

} // namespace kvSubstance::conformance
