#include "platform/lv2/scan_program.h"

int main(int argc, char** argv) {
    return orvane::platform::lv2::runScanProgram(argc, argv);
}
