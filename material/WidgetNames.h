// The names that descriptions give to widgets.
#pragma once

#include "material/Types.h"

namespace kvSubstance {

// "slider", "angle", "togglebutton", "color" and "image", exactly; WidgetNone for every other name,
// "combobox" included, which packages know and host-side descriptions do not.
Widget widgetNamed(const char* name);

} // namespace kvSubstance
