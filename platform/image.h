/// @file
/// The host's image library, as this library uses it.
#pragma once

#include "platform/image/Image.h"
#include "platform/image/TempReference.h"
