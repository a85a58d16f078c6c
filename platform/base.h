/// @file
/// The host's base library, as this library uses it: counted references, strings, containers, signals.
#pragma once

#include "platform/base/Containers.h"
#include "platform/base/ReferenceCount.h"
#include "platform/base/Signals.h"
#include "platform/base/Strings.h"
