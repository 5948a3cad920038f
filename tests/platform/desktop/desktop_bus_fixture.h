#pragma once

#include "support/desktop_peer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <utility>

namespace orvane::platform::desktop {

using namespace std::chrono_literals;
using test::DesktopPeer;
using test::waitFor;
using testing::ElementsAre;
using testing::IsEmpty;

/// Returns the answer to `question`, which waits for `peer`; that serves it meanwhile.
template <class Peer, class Question>
auto answerOf(Peer& peer, Question question) {
    auto answer = std::async(std::launch::async, std::move(question));
    while (answer.wait_for(1ms) != std::future_status::ready)
        peer.serve();
    return answer.get();
}

} // namespace orvane::platform::desktop
