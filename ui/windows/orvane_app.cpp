#include "ui/windows/orvane_app.h"

#include "ui/controls/confirmation.h"
#include "ui/controls/screen_room.h"
#include "ui/keys.h"
#include "ui/mixer/mixer_view.h"
#include "ui/mixer/session_names.h"
#include "ui/windows/channel_count_picker_view.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QLayout>
#include <QMenuBar>
#include <QUrl>

#include <algorithm>
#include <chrono>
#include <iterator>
#include <memory>
#include <string_view>
#include <utility>

namespace orvane::ui {

namespace {

constexpr QSize defaultSize(1280, 860);
constexpr QSize smallestContent(900, 560);
constexpr std::string_view channelCountKey = "orvaneChannelCount";
constexpr std::string_view windowKey = "orvaneWindow";
constexpr std::string_view presentationKey = "orvanePresentation";
constexpr std::string_view logCategory = "application";
/// How often the title is marked or unmarked as unsaved; each check asks every plugin for its state.
constexpr auto changesInterval = std::chrono::seconds(2);

const QString supportAddress = QStringLiteral("support@orvane.example");

/// Returns the channel count that was chosen last; 0 if there is none, or if it is not one of the choices.
std::int64_t storedChannelCount(const platform::Preferences& preferences) {
    const std::int64_t count = preferences.integer(channelCountKey);
    return std::ranges::find(offeredChannelCounts, count) == std::end(offeredChannelCounts) ? 0 : count;
}

} // namespace

ORVANEApp::ORVANEApp(Parts applicationParts, LaunchOptions options)
    : parts(std::move(applicationParts)),
      launchOptions(std::move(options)),
      channels(channelCountFor(launchOptions).value_or(storedChannelCount(parts.preferences))) {
    addMenus();
    connect(recentMenu, &QMenu::aboutToShow, this, [this] { fillRecentMenu(); });
    showContent();
    const auto geometry = parts.preferences.value(windowKey);
    if (!geometry || !restoreGeometry(QByteArray::fromBase64(QByteArray::fromStdString(*geometry))))
        resize(defaultSize);
}

ORVANEApp::~ORVANEApp() {
    remember(windowKey, saveGeometry().toBase64().toStdString());
    // Stops the audio while the objects that it reports to still exist.
    delete takeCentralWidget();
}

MixerRootView* ORVANEApp::mixerRootView() const {
    return dynamic_cast<MixerRootView*>(centralWidget());
}

void ORVANEApp::whenOpened(SessionFile::Report then) {
    if (mixerRootView() == nullptr) return then(platform::Done{});
    if (opened) return then(*opened);
    onOpened = std::move(then);
}

void ORVANEApp::saveInPlace() {
    MixerRootView* const root = mixerRootView();
    if (root != nullptr) root->view().commitEditing();
    if (root != nullptr && root->view().sessionFile().saveInPlace()) return;
    parts.services.log.post(
        platform::LogLevel::error, logCategory,
        {"There is no file to save the session to; it has not been opened from one or saved to one."}
    );
}

void ORVANEApp::saveTo(const std::filesystem::path& file, const SessionFile::Report& then) {
    MixerRootView* const root = mixerRootView();
    if (root == nullptr) return then(platform::Done{});
    root->view().commitEditing();
    root->view().sessionFile().saveTo(file, then);
}

bool ORVANEApp::isUnsaved() const {
    MixerRootView* const root = mixerRootView();
    return root != nullptr && root->view().sessionFile().isUnsaved();
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

void ORVANEApp::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    if (event->spontaneous()) return;
    centralWidget()->setMinimumSize(smallestContentHere());
    layout()->activate();
    if (isMaximized() || isFullScreen()) return;
    const QRect held = heldByScreen(*this);
    // The desktop places a window that has no position yet.
    if (testAttribute(Qt::WA_Moved))
        setGeometry(held);
    else
        resize(held.size());
}

void ORVANEApp::closeEvent(QCloseEvent* event) {
    MixerRootView* const root = mixerRootView();
    if (mayClose || root == nullptr) return event->accept();
    root->view().commitEditing();
    const bool isRunning = root->engine().state().isRunning.get();
    const bool isChanged = isUnsaved();
    if (!isRunning && !isChanged) return event->accept();
    event->ignore();
    Confirmation question{
        .title = QStringLiteral("Quit ORVANE?"), .message = {}, .action = QStringLiteral("Quit")};
    QStringList reasons;
    if (isRunning) reasons.append(QStringLiteral("The audio is running: quitting stops it."));
    if (isChanged) {
        reasons.append(QStringLiteral("This session has changed since it was last saved: quitting without "
                                      "saving throws the changes away."));
        question.action = QStringLiteral("Quit Without Saving");
        question.alternative = QStringLiteral("Save…");
    }
    question.message = reasons.join(QStringLiteral("\n\n"));
    confirm(
        this, question, [this] { leave(); }, [this, root] { root->view().save([this] { leave(); }); }
    );
}

void ORVANEApp::leave() {
    mayClose = true;
    close();
}

void ORVANEApp::addMenus() {
    QMenu* const application = menuBar()->addMenu(QStringLiteral("&ORVANE"));
    QAction* const aboutItem =
        application->addAction(QStringLiteral("About ORVANE"), this, [this] { about.show(); });
    aboutItem->setMenuRole(QAction::AboutRole);
    application->addSeparator();
    QAction* const quit = application->addAction(QStringLiteral("Quit ORVANE"), this, [this] { close(); });
    quit->setShortcuts(keysOf(KeyCommand::quit));
    quit->setMenuRole(QAction::QuitRole);

    sessionMenu = menuBar()->addMenu(QStringLiteral("&Session"));
    stripMenu = menuBar()->addMenu(QStringLiteral("S&trips"));

    QMenu* const helpMenu = menuBar()->addMenu(QStringLiteral("&Help"));
    QAction* const helpItem =
        helpMenu->addAction(QStringLiteral("ORVANE Help"), this, [this] { help.show(); });
    helpItem->setShortcuts(keysOf(KeyCommand::help));
    helpMenu->addAction(QStringLiteral("Send Feedback to %1…").arg(supportAddress), this, [this] {
        writeToSupport();
    });
}

void ORVANEApp::showContent() {
    QWidget* content = nullptr;
    MixerRootView* root = nullptr;
    if (channels < 1) {
        content = new ChannelCountPickerView({.onSelect = [this](int count) { setChannelCount(count); }});
    } else {
        root = new MixerRootView(static_cast<std::size_t>(channels), parts.services, [this] {
            setChannelCount(0);
        });
        content = root;
    }
    if (parts.onMixer) parts.onMixer(root == nullptr ? nullptr : &root->engine().state());
    content->setMinimumSize(smallestContentHere());
    // Qt deletes the old content later, after its own event handlers have returned.
    setCentralWidget(content);
    content->setFocus();
    setWindowTitle(QStringLiteral("ORVANE[*]"));
    setWindowModified(false);
    changesTimer.reset();
    for (QMenu* menu : {sessionMenu, stripMenu}) {
        menu->clear();
        menu->menuAction()->setVisible(root != nullptr);
    }
    if (root == nullptr) return;
    const MixerCommands& commands = root->view().commands();
    for (QAction* command : commands.menu())
        sessionMenu->addAction(command);
    sessionMenu->insertMenu(commands.save(), recentMenu);
    sessionMenu->addSeparator();
    sessionMenu->addAction(root->view().presentationCommand());
    rememberPresentation(root->view().presentation());
    for (QAction* command : root->view().stripKeys().all())
        stripMenu->addAction(command);
    begin(*root);
    followFile(*root);
}

QSize ORVANEApp::smallestContentHere() const {
    // On a screen too low for both, the menu bar counts as part of the content.
    const int bar = menuBar()->sizeHint().height();
    const int room = screenRoom(*this).height() - bar;
    return {
        smallestContent.width(), std::clamp(room, smallestContent.height() - bar, smallestContent.height())};
}

void ORVANEApp::begin(MixerRootView& root) {
    LaunchOptions options = std::exchange(launchOptions, {});
    remembered = std::make_unique<RememberedDevices>(root.engine(), parts.preferences, parts.services.log);
    remembered->addTo(options);
    remembered->selectMIDISource();
    remembered->follow();
    const auto problems = selectDevices(root.engine(), parts.services.audioHardware, options);
    const auto goOn = [this, &root, options](const platform::Result<platform::Done>& applied) {
        opened = applied;
        if (onOpened) std::exchange(onOpened, {})(applied);
        if (!applied) return;
        launch(root.engine(), options);
        root.view().sessionFile().setSaved();
        root.view().sessionFile().setFile(options.sessionFile);
    };
    if (options.session)
        root.view().sessionFile().apply(
            std::make_shared<const session::MixerDocumentData>(*options.session), goOn
        );
    else
        goOn(platform::Done{});
    showProblems(problems);
}

void ORVANEApp::followFile(MixerRootView& root) {
    const auto& file = root.view().sessionFile().ownPath();
    const auto show = [this](const std::optional<std::filesystem::path>& path) {
        setWindowTitle(
            path ? QStringLiteral("%1[*] — ORVANE").arg(toName(path->filename()))
                 : QStringLiteral("ORVANE[*]")
        );
        setWindowModified(isUnsaved());
        if (!path) return;
        const auto kept = recentFiles.add(*path);
        if (!kept)
            parts.services.log.post(platform::LogLevel::error, logCategory, {kept.error().description});
    };
    toFile = file.subscribe(show);
    show(file.get());
    changesTimer =
        parts.services.mainThread.repeat(changesInterval, [this] { setWindowModified(isUnsaved()); });
}

void ORVANEApp::fillRecentMenu() {
    recentMenu->clear();
    for (const std::filesystem::path& file : recentFiles.existing()) {
        QString text = QStringLiteral("%1 (%2)").arg(toName(file.filename()), toName(file.parent_path()));
        recentMenu->addAction(text.replace(QChar(u'&'), QStringLiteral("&&")), this, [this, file] {
            MixerRootView* const root = mixerRootView();
            if (root == nullptr) return;
            root->view().commitEditing();
            root->view().sessionFile().loadFrom(file);
        });
    }
    if (recentMenu->isEmpty()) recentMenu->addAction(QStringLiteral("No recent sessions"))->setEnabled(false);
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

void ORVANEApp::rememberPresentation(Presentation& presentation) {
    const auto name = parts.preferences.value(presentationKey);
    // Setup is what a window that is high enough shows in any case.
    if (presentationNamed(name.value_or("")) == StripPresentation::mix)
        presentation.choose(StripPresentation::mix);
    presentationSubscription = presentation.chosen().subscribe([this](const auto& chosen) {
        remember(presentationKey, nameOf(*chosen));
    });
}

void ORVANEApp::writeToSupport() {
    if (QDesktopServices::openUrl(QUrl(QStringLiteral("mailto:") + supportAddress))) return;
    showAlert(
        this, QStringLiteral("No mail program opened."),
        QStringLiteral("Please write to %1.").arg(supportAddress)
    );
}

} // namespace orvane::ui
