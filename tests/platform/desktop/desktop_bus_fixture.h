#pragma once

#include "support/desktop_peer.h"

#include <gmock/gmock.h>

#include <chrono>
#include <future>
#include <utility>

namespace orvane::platform::desktop {

using namespace std::chrono_literals;
using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

/// Serves `peer` while another thread runs the blocking `question`; returns the answer.
template <class Peer, class Question>
auto answerOf(Peer& peer, Question question) {
    auto answer = std::async(std::launch::async, std::move(question));
    while (answer.wait_for(1ms) != std::future_status::ready)
        peer.serve();
    return answer.get();
}

} // namespace orvane::platform::desktop
