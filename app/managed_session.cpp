#include "app/managed_session.h"

#include "app/command_line.h"

#include <chrono>
#include <cstdlib>
#include <system_error>
#include <utility>

namespace orvane::app {

namespace {

using namespace std::chrono_literals;

/// The window waits as long, so not for long where NSM_URL names a manager that is gone.
constexpr platform::session_manager::ManagerPatience patience{.answer = 2s, .open = 10s};

} // namespace

std::unique_ptr<ManagedSession> ManagedSession::join(const std::filesystem::path& program) {
    const char* const url = std::getenv("NSM_URL");
    if (url == nullptr || *url == '\0') return nullptr;
    auto client =
        platform::session_manager::SessionManagerClient::connect(url, program.filename().string(), patience);
    if (client) return std::make_unique<ManagedSession>(std::move(client).value());
    printMessage(client.error().description);
    return nullptr;
}

ManagedSession::ManagedSession(std::unique_ptr<platform::session_manager::SessionManagerClient> joined)
    : client(std::move(joined)), sessionFile(client->session().path) {
    sessionFile += ".orvane";
    // Where this fails, so will saving, which says why.
    std::error_code ignored;
    std::filesystem::create_directories(sessionFile.parent_path(), ignored);
}

bool ManagedSession::isStored() const {
    std::error_code unknown;
    // What cannot be looked at is read, which says why not.
    return std::filesystem::exists(sessionFile, unknown) || unknown;
}

void ManagedSession::refuse(const std::string& sentence) {
    isRefused = true;
    client->refuseOpen(platform::session_manager::ManagerRefusal::badSession, sentence);
}

void ManagedSession::serve(ui::ORVANEApp& window) {
    client->setOnSave([this, &window] {
        window.saveTo(sessionFile, [this, &window](const platform::Result<platform::Done>& saved) {
            client->answerSave(saved);
            tellChanges(window);
        });
    });
    if (isRefused) return;
    window.whenOpened([this](const platform::Result<platform::Done>& opened) {
        if (opened)
            client->confirmOpen();
        else
            refuse(opened.error().description);
    });
}

void ManagedSession::tellChanges(const ui::ORVANEApp& window) {
    client->setDirty(window.isUnsaved());
}

} // namespace orvane::app
