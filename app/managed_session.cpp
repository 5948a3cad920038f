#include "app/managed_session.h"

#include "app/command_line.h"

#include <chrono>
#include <cstdlib>
#include <system_error>
#include <utility>

namespace orvane::app {

namespace {

using namespace std::chrono_literals;

/// The window opens only after this, so it is short: NSM_URL may name a manager that no longer runs.
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
    // If this fails, saving fails too and reports why.
    std::error_code ignored;
    std::filesystem::create_directories(sessionFile.parent_path(), ignored);
}

bool ManagedSession::isStored() const {
    std::error_code unknown;
    // A file whose status cannot be read counts as existing; reading it reports why.
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
            reportChanges(window);
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

void ManagedSession::reportChanges(const ui::ORVANEApp& window) {
    client->setDirty(window.isUnsaved());
}

} // namespace orvane::app
