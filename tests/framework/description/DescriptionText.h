// Descriptions as text, one record a line, for tests to compare.
#pragma once

#include "framework/description/PackageDesc.h"

#include <string>
#include <utility>
#include <vector>

namespace descriptiontext {

std::string print(const SubstanceAir::GraphDesc& graph);
std::string print(const SubstanceAir::InputDescBase& input);
std::string print(const std::vector<unsigned int>& uids);
std::string print(const std::vector<std::pair<unsigned int, unsigned int>>& pairs);

} // namespace descriptiontext
