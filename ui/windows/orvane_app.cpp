#include "ui/windows/orvane_app.h"

#include "ui/controls/confirmation.h"
#include "ui/windows/channel_count_picker_view.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QMenuBar>
#include <QUrl>

#include <string_view>
#include <utility>

namespace orvane::ui {

namespace {

constexpr QSize defaultSize(1280, 860);
constexpr QSize smallestContent(900, 560);
constexpr std::string_view channelCountKey = "orvaneChannelCount";
constexpr std::string_view windowKey = "orvaneWindow";
constexpr std::string_view logCategory = "application";

const QString supportAddress = QStringLiteral("support@orvane.example");

} // namespace

ORVANEApp::ORVANEApp(Parts applicationParts, LaunchOptions options)
    : parts(std::move(applicationParts)),
      launchOptions(std::move(options)),
      channels(channelCountFor(launchOptions).value_or(parts.preferences.integer(channelCountKey))) {
    setWindowTitle(QStringLiteral("ORVANE"));
    addMenus();
    showContent();
    const auto geometry = parts.preferences.value(windowKey);
    if (!geometry || !restoreGeometry(QByteArray::fromBase64(QByteArray::fromStdString(*geometry))))
        resize(defaultSize);
}

ORVANEApp::~ORVANEApp() {
    remember(windowKey, saveGeometry().toBase64().toStdString());
    // The audio stops while all that it reports to still stands.
    delete takeCentralWidget();
}

MixerRootView* ORVANEApp::mixerRootView() const {
    return dynamic_cast<MixerRootView*>(centralWidget());
}

void ORVANEApp::showProblems(const std::vector<std::string>& problems) {
    for (const std::string& problem : problems) {
        parts.services.log.post(platform::LogLevel::error, logCategory, {problem});
        showAlert(
            this, QStringLiteral("ORVANE could not do all that it was asked to."),
            QString::fromStdString(problem)
        );
    }
}

void ORVANEApp::closeEvent(QCloseEvent* event) {
    MixerRootView* const root = mixerRootView();
    if (mayClose || root == nullptr || !root->engine().state().isRunning.get()) return event->accept();
    event->ignore();
    confirm(
        this,
        {.title = QStringLiteral("Quit ORVANE?"),
         .message =
             QStringLiteral("The audio is running: quitting stops it, and what has not been saved to a "
                            "session file is lost."),
         .action = QStringLiteral("Quit")},
        [this] {
            mayClose = true;
            close();
        }
    );
}

void ORVANEApp::addMenus() {
    QMenu* const application = menuBar()->addMenu(QStringLiteral("&ORVANE"));
    QAction* const aboutItem =
        application->addAction(QStringLiteral("About ORVANE"), this, [this] { about.show(); });
    aboutItem->setMenuRole(QAction::AboutRole);
    application->addSeparator();
    QAction* const quit = application->addAction(QStringLiteral("Quit ORVANE"), this, [this] { close(); });
    quit->setShortcut(QKeySequence::Quit);
    quit->setMenuRole(QAction::QuitRole);

    QMenu* const helpMenu = menuBar()->addMenu(QStringLiteral("&Help"));
    QAction* const helpItem =
        helpMenu->addAction(QStringLiteral("ORVANE Help"), this, [this] { help.show(); });
    helpItem->setShortcuts({QKeySequence(QStringLiteral("Ctrl+?")), QKeySequence(Qt::Key_F1)});
    helpMenu->addAction(QStringLiteral("Send Feedback to %1…").arg(supportAddress), this, [this] {
        writeToSupport();
    });
}

void ORVANEApp::showContent() {
    QWidget* content = nullptr;
    std::vector<std::string> problems;
    if (channels < 1) {
        content = new ChannelCountPickerView({.onSelect = [this](int count) { setChannelCount(count); }});
    } else {
        auto* const root = new MixerRootView(static_cast<std::size_t>(channels), parts.services, [this] {
            setChannelCount(0);
        });
        problems = launch(root->engine(), parts.services.audioHardware, std::exchange(launchOptions, {}));
        content = root;
    }
    content->setMinimumSize(smallestContent);
    // A content that was there goes once its own doings are over.
    setCentralWidget(content);
    content->setFocus();
    showProblems(problems);
}

void ORVANEApp::setChannelCount(std::int64_t count) {
    channels = count;
    remember(channelCountKey, std::to_string(count));
    showContent();
}

void ORVANEApp::remember(std::string_view key, std::string_view value) {
    const auto kept = parts.preferences.setValue(key, value);
    if (!kept) parts.services.log.post(platform::LogLevel::error, logCategory, {kept.error().description});
}

void ORVANEApp::writeToSupport() {
    if (QDesktopServices::openUrl(QUrl(QStringLiteral("mailto:") + supportAddress))) return;
    showAlert(
        this, QStringLiteral("No mail program opened."),
        QStringLiteral("Please write to %1.").arg(supportAddress)
    );
}

} // namespace orvane::ui
