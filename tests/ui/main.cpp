#include "ui/application.h"
#include "ui/theme/theme.h"

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    // No display: widgets are painted into memory.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    orvane::ui::Application application(argc, argv);
    orvane::ui::applyTheme(application);
    return RUN_ALL_TESTS();
}
