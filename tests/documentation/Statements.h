// What statements in the documentation may take for granted.
#pragma once

#include "bridge/Bridge.h"

#include <cstdio>
