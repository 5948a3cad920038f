#include "platform/lv2_units/scan_program.h"

int main(int argc, char** argv) {
    return orvane::platform::lv2_units::runScanProgram(argc, argv);
}
