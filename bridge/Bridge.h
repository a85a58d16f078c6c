/// @file
/// Everything that a host needs: the material model, package files, and the way to the engine and back.
///
///     kv::vector<char> bottom, top;
///     kvSubstance::readSubstanceContent(bottomPath, bottom);
///     kvSubstance::readSubstanceContent(topPath, top);
///     const kv::Reference<kvSubstance::Substance> material = kvSubstance::createSubstance(bottom, top);
///     if (!material) return;
///     if (kvSubstance::SubstanceInput* const input = material->getInput("scale")) {
///         input->setValueF(4.0f, 0);
///         kvSubstance::syncValueFromSubstanceInputToInputInstanceBase(material, input);
///     }
///     const kv::TempReference<ilSIDImage> texture = kvSubstance::getTextureFromSubstance(material.get());
#pragma once

#include "bridge/CreateSubstance.h"
#include "bridge/Synchronisation.h"
#include "bridge/Texture.h"
#include "material/Content.h"
#include "material/Substance.h"
