// A host's library with a static material, which dies with the library.
#include "bridge/Bridge.h"

#if defined(_WIN32)
#define PLUGIN_API extern "C" __declspec(dllexport)
#else
#define PLUGIN_API extern "C" __attribute__((visibility("default")))
#endif

namespace {

kv::Reference<kvSubstance::Substance> material;

bool render(int coverage) {
    kvSubstance::SubstanceInput* const input = material->getInput("coverage");
    input->setValueF(static_cast<float>(coverage) / 100, 0);
    kvSubstance::syncValueFromSubstanceInputToInputInstanceBase(material, input);
    return bool(kvSubstance::getTextureFromSubstance(material.get()));
}

} // namespace

PLUGIN_API bool makeMaterial(const char* bottomPath, const char* topPath) {
    kv::vector<char> bottom;
    kv::vector<char> top;
    kvSubstance::readSubstanceContent(kvString::IString(bottomPath, kvString::EncodingMultibyte), bottom);
    kvSubstance::readSubstanceContent(kvString::IString(topPath, kvString::EncodingMultibyte), top);
    material = kvSubstance::createSubstance(bottom, top);
    return material && render(10);
}

PLUGIN_API void renderForEver() {
    for (int coverage = 0;; coverage = (coverage + 1) % 100) render(coverage);
}
