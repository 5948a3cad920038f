#include "ui/theme/theme.h"

#include "ui/theme/tool_tips.h"

#include <QApplication>
#include <QFontDatabase>
#include <QPalette>
#include <QString>
#include <QStyleFactory>

// The resources of a library must be initialised by a function outside of namespaces.
// NOLINTNEXTLINE(misc-use-anonymous-namespace)
static void addAssets() {
    Q_INIT_RESOURCE(assets);
}

namespace orvane::ui {

namespace {

QPalette makePalette() {
    QPalette palette;
    palette.setColor(QPalette::Window, theme::windowBackground);
    palette.setColor(QPalette::WindowText, theme::primaryText);
    palette.setColor(QPalette::Base, theme::well);
    palette.setColor(QPalette::AlternateBase, theme::panelBackground);
    palette.setColor(QPalette::Text, theme::primaryText);
    palette.setColor(QPalette::PlaceholderText, theme::secondaryText);
    palette.setColor(QPalette::Button, theme::raised);
    palette.setColor(QPalette::ButtonText, theme::primaryText);
    palette.setColor(QPalette::ToolTipBase, theme::panelBackground);
    palette.setColor(QPalette::ToolTipText, theme::primaryText);
    palette.setColor(QPalette::Highlight, theme::selection);
    palette.setColor(QPalette::HighlightedText, theme::primaryText);
    palette.setColor(QPalette::Link, theme::accent);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, theme::disabledText);
    return palette;
}

/// Returns a colour for style sheets.
QString css(const QColor& color) {
    return color.name(QColor::HexRgb);
}

QString makeStyleSheet() {
    return QStringLiteral(R"(
        QToolTip { background: %1; color: white; border: 1px solid %2; padding: 4px; }
        QLineEdit, QComboBox { background: %3; border: 1px solid %2; border-radius: 4px; padding: 2px 6px; }
        QLineEdit:focus, QComboBox:focus { border-color: %4; }
        QLineEdit#flat { background: transparent; border-color: transparent; padding: 0px; }
        QLineEdit#flat:hover { border-color: %2; }
        QLineEdit#flat:focus { background: %3; border-color: %4; }
        QComboBox::drop-down { border: none; width: 18px; }
        QComboBox::down-arrow { image: url(:/icons/choose.svg); width: 10px; height: 10px; }
        QComboBox QAbstractItemView, QMenu { background: %1; border: 1px solid %2; }
        QComboBox QAbstractItemView::item, QListView::item { min-height: %10px; }
        QComboBox { selection-background-color: %6; selection-color: white; }
        QMenu::item:selected, QMenuBar::item:selected { background: %6; color: white; }
        QMenu { menu-scrollable: 1; padding: 0 4px; }
        QMenu::item { min-height: %10px; padding: 0 28px 0 8px; }
        QMenu::item:disabled { color: %7; }
        QMenu::item:selected:disabled { background: %1; }
        QAbstractItemView::item:selected { background: %6; color: white; }
        QSlider::groove:horizontal { height: 4px; background: %5; border-radius: 2px; }
        QSlider::sub-page:horizontal { background: %4; border-radius: 2px; }
        QSlider#fromDefault::sub-page:horizontal { background: transparent; }
        QSlider::handle:horizontal { width: 12px; margin: -5px 0; border-radius: 6px; background: white; }
        QSlider::handle:horizontal:focus { background: %4; }
        QScrollArea, QScrollArea > QWidget > QWidget { background: transparent; border: none; }
        QScrollBar:vertical { background: transparent; width: 10px; margin: 0; }
        QScrollBar::handle:vertical { background: %2; border-radius: 3px; min-height: 30px; margin: 2px; }
        QScrollBar:horizontal { background: transparent; height: 10px; margin: 0; }
        QScrollBar::handle:horizontal { background: %2; border-radius: 3px; min-width: 30px; margin: 2px; }
        QScrollBar::add-line, QScrollBar::sub-line { width: 0; height: 0; }
        QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }
        QCheckBox::indicator { width: 14px; height: 14px; background: %3; border: 1px solid %2; border-radius: 3px; }
        QCheckBox::indicator:focus, QCheckBox::indicator:hover { border-color: %4; }
        QCheckBox::indicator:checked { background: %4; border-color: %4; image: url(:/icons/check.svg); }
        QPushButton { background: %5; border: 1px solid %2; border-radius: 4px; padding: 0 14px; min-width: 60px; min-height: %11px; }
        QPushButton:hover, QPushButton:default, QPushButton:focus { border-color: %4; }
        QPushButton:pressed { background: %2; }
        QPushButton#destructive { background: %8; border-color: %9; }
        QPushButton#destructive:hover, QPushButton#destructive:focus { border-color: white; }
        QDialogButtonBox { dialogbuttonbox-buttons-have-icons: 0; }
        QListView#components { background: %3; border: 1px solid %2; border-radius: 4px; }
        QProgressBar { background: %3; border: none; border-radius: 2px; }
        QProgressBar::chunk { background: %4; border-radius: 2px; }
        QToolButton { border: 1px solid transparent; border-radius: 4px; padding: 4px 8px; }
        QToolButton#command { padding: 4px; }
        QToolButton#command[isWanted="true"] { background: %6; border-color: %4; }
        QFileDialog QToolButton { padding: 0; }
        QToolButton:hover, QToolButton:pressed { background: %5; }
        QToolButton:focus { border-color: %4; }
        QToolButton#scene { background: %5; border-color: %2; padding: 0; }
        QToolButton#scene:hover, QToolButton#scene:focus { border-color: %4; }
        QToolButton#scene:pressed { background: %2; }
        QToolButton#scene:disabled { background: transparent; color: %7; }
    )")
        .arg(
            css(theme::panelBackground), css(theme::divider), css(theme::well), css(theme::accent),
            css(theme::raised), css(theme::selection), css(theme::disabledText), css(theme::red.darker(170)),
            css(theme::red), QString::number(theme::touchTarget), QString::number(theme::touchTarget - 2)
        );
}

} // namespace

QFont systemFont(int size, QFont::Weight weight) {
    QFont font = QApplication::font();
    font.setPixelSize(size);
    font.setWeight(weight);
    return font;
}

QFont monospacedFont(int size, QFont::Weight weight) {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPixelSize(size);
    font.setWeight(weight);
    return font;
}

void applyTheme(QApplication& application) {
    addAssets();
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    QApplication::setPalette(makePalette());
    application.setFont(systemFont(13));
    application.setStyleSheet(makeStyleSheet());
    application.installEventFilter(new ToolTips(&application));
}

} // namespace orvane::ui
