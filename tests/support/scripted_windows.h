#pragma once

#include "platform/effects/editor_windows.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace orvane::test {

/// Windows that record calls.
struct ScriptedWindows final : platform::EditorWindows {
    struct Window final : platform::NSWindowController {
        explicit Window(ScriptedWindows& madeBy) : windows(madeBy) {}
        ~Window() override { windows.log.emplace_back("gone"); }
        void showWindow() override { windows.log.emplace_back("show"); }
        void makeKeyAndOrderFront() override { windows.log.emplace_back("front"); }
        [[nodiscard]] bool isClosed() const override { return windows.areClosed; }
        ScriptedWindows& windows;
        std::shared_ptr<platform::AUViewController> content;
    };

    std::unique_ptr<platform::NSWindowController> windowWithContentViewController(
        std::shared_ptr<platform::AUViewController> content, const std::string& title, std::uint32_t styleMask
    ) override {
        log.push_back(title + " " + std::to_string(styleMask));
        auto window = std::make_unique<Window>(*this);
        window->content = std::move(content);
        return window;
    }

    std::vector<std::string> log;
    bool areClosed = false;
};

} // namespace orvane::test
