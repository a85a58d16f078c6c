// A host's library with a static material, which dies with the library.
#include "bridge/Bridge.h"

#include <atomic>

#if defined(_WIN32)
#define PLUGIN_API extern "C" __declspec(dllexport)
#else
#define PLUGIN_API extern "C" __attribute__((visibility("default")))
#endif

namespace {

using Material = kv::Reference<kvSubstance::Substance>;

Material material;
Material* kept = nullptr;
std::atomic<int> renders{0};

bool render(const Material& rendered, int coverage) {
    kvSubstance::SubstanceInput* const input = rendered->getInput("coverage");
    input->setValueF(static_cast<float>(coverage) / 100, 0);
    kvSubstance::syncValueFromSubstanceInputToInputInstanceBase(rendered, input);
    return bool(kvSubstance::getTextureFromSubstance(rendered.get()));
}

} // namespace

PLUGIN_API bool makeMaterial(const char* bottomPath, const char* topPath) {
    kv::vector<char> bottom;
    kv::vector<char> top;
    kvSubstance::readSubstanceContent(kvString::IString(bottomPath, kvString::EncodingMultibyte), bottom);
    kvSubstance::readSubstanceContent(kvString::IString(topPath, kvString::EncodingMultibyte), top);
    material = kvSubstance::createSubstance(bottom, top);
    return material && render(material, 10);
}

PLUGIN_API bool renderOnce() {
    return render(material, 90);
}

// Beyond the end of the static material, which is kept first.
PLUGIN_API void keepMaterial() {
    kept = new Material(material);
}
PLUGIN_API void renderForEver() {
    for (;; ++renders) render(*kept, renders % 100);
}
PLUGIN_API int countRenders() {
    return renders;
}
