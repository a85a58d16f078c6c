// The commands of the tool. Each is added to the command line with its options, and stores its exit status
// when it runs. Commands throw Failure and UsageError.
#pragma once

#include <CLI/App.hpp>

namespace tool {

void addCompile(CLI::App& app, int& status);
void addInfo(CLI::App& app, int& status);
void addRender(CLI::App& app, int& status);
void addMaps(CLI::App& app, int& status);
void addSweep(CLI::App& app, int& status);
void addSheet(CLI::App& app, int& status);
void addGallery(CLI::App& app, int& status);
void addVerify(CLI::App& app, int& status);
void addDescribe(CLI::App& app, int& status);
void addNodes(CLI::App& app, int& status);
void addManual(CLI::App& app, int& status);
void addCompletion(CLI::App& app, int& status);

} // namespace tool
