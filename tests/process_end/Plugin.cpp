// A host's library with a static material, which dies with the library.
#include "bridge/Bridge.h"

#include <atomic>
#include <string>
#include <thread>

#if defined(_WIN32)
#define PLUGIN_API extern "C" __declspec(dllexport)
#else
#define PLUGIN_API extern "C" __attribute__((visibility("default")))
#endif

namespace {

using Material = kv::Reference<kvSubstance::Substance>;

Material material;
Material* kept = nullptr; // beyond the end of the static one
std::atomic<int> renders{0};

kv::vector<char> load(const char* path) {
    kv::vector<char> content;
    kvSubstance::readSubstanceContent(kvString::IString(path, kvString::EncodingMultibyte), content);
    return content;
}

bool render(const Material& rendered, int coverage) {
    kvSubstance::SubstanceInput* const input = rendered->getInput("coverage");
    input->setValueF(static_cast<float>(coverage) / 100, 0);
    kvSubstance::syncValueFromSubstanceInputToInputInstanceBase(rendered, input);
    return bool(kvSubstance::getTextureFromSubstance(rendered.get()));
}

} // namespace

PLUGIN_API bool act(const char* name, const char* bottomPath, const char* topPath) {
    const std::string action = name;
    if (action == "make") {
        material = kvSubstance::createSubstance(load(bottomPath), load(topPath));
        return material && render(material, 10);
    }
    if (action == "keep") kept = new Material(material);
    if (action == "render for ever")
        for (;; ++renders) render(*kept, renders % 100);
    while (action == "wait for renders" && renders < 3) std::this_thread::yield();
    return action != "render" || render(material, 90);
}
