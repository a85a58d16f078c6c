#include "material/WidgetNames.h"

#include <cstring>

namespace kvSubstance {

Widget widgetNamed(const char* name) {
    struct Row {
        const char* name;
        Widget widget;
    };
    static const Row rows[] = {
        {"slider", WidgetSlider}, {"angle", WidgetAngle}, {"togglebutton", WidgetToggleButton},
        {"color", WidgetColor},   {"image", WidgetImage},
    };
    for (const Row& row : rows) {
        if (std::strcmp(name, row.name) == 0) return row.widget;
    }
    return WidgetNone;
}

} // namespace kvSubstance
