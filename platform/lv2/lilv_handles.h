#pragma once

#include <lilv/lilv.h>

#include <memory>

namespace orvane::platform::lv2 {

/// Frees an object that lilv returned.
template <auto give>
struct LilvFree {
    template <class T>
    void operator()(T* object) const noexcept {
        give(object);
    }
};

using WorldHandle = std::unique_ptr<LilvWorld, LilvFree<lilv_world_free>>;
using NodeHandle = std::unique_ptr<LilvNode, LilvFree<lilv_node_free>>;
using NodesHandle = std::unique_ptr<LilvNodes, LilvFree<lilv_nodes_free>>;
using ScalePointsHandle = std::unique_ptr<LilvScalePoints, LilvFree<lilv_scale_points_free>>;
using TextHandle = std::unique_ptr<char, LilvFree<lilv_free>>;

} // namespace orvane::platform::lv2
