#include "platform/lv2_units/state_paths.h"

#include <lv2/state/state.h>

#include <cstdlib>
#include <cstring>

namespace orvane::platform::lv2_units {

namespace {

char* abstractPath(LV2_State_Map_Path_Handle, const char* absolutePath) {
    return ::strdup(absolutePath);
}

char* noPath(LV2_State_Map_Path_Handle, const char*) {
    return ::strdup("");
}

void freePath(LV2_State_Free_Path_Handle, char* path) {
    std::free(path);
}

LV2_State_Map_Path mapPathFeature{nullptr, abstractPath, noPath};
LV2_State_Free_Path freePathFeature{nullptr, freePath};

} // namespace

std::array<LV2_Feature, 2> statePathFeatures() {
    return {{{LV2_STATE__mapPath, &mapPathFeature}, {LV2_STATE__freePath, &freePathFeature}}};
}

} // namespace orvane::platform::lv2_units
