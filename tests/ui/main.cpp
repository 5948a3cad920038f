#include "ui/application.h"

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    // Paints without a display, into memory, on a large screen and some small ones.
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" ORVANE_SCREENS);
    testing::InitGoogleTest(&argc, argv);
    orvane::ui::Application application(argc, argv);
    return RUN_ALL_TESTS();
}
