#include "ui/windows/help_view.h"

#include "ui/controls/text_label.h"
#include "ui/theme/theme.h"

#include <QHBoxLayout>
#include <QListWidget>
#include <QTextBlockFormat>
#include <QTextBrowser>
#include <QTextCursor>

#include <cstddef>

namespace orvane::ui {

namespace {

constexpr QSize helpSize(660, 480);
constexpr int listWidth = 190;
constexpr double pageMargin = 22.0;
constexpr double spaceBelowTitle = 12.0;
constexpr double spaceBelowParagraph = 10.0;
constexpr double lineHeightPercent = 125.0;

void addBlock(QTextCursor& cursor, const QString& text, const QFont& font, double spaceBelow) {
    QTextBlockFormat block;
    block.setBottomMargin(spaceBelow);
    block.setLineHeight(lineHeightPercent, QTextBlockFormat::ProportionalHeight);
    QTextCharFormat characters;
    characters.setFont(font);
    characters.setForeground(theme::primaryText);
    if (cursor.atStart())
        cursor.setBlockFormat(block);
    else
        cursor.insertBlock(block);
    cursor.insertText(text, characters);
}

} // namespace

HelpView::HelpView(QWidget* parent) : QWidget(parent), list(new QListWidget), page(new QTextBrowser) {
    setWindowTitle(QStringLiteral("ORVANE Help"));
    resize(helpSize);
    auto* const sides = new QHBoxLayout(this);
    sides->setContentsMargins(0, 0, 0, 0);
    sides->setSpacing(0);

    list->setFixedWidth(listWidth);
    list->setFrameShape(QFrame::NoFrame);
    list->setFont(textFont(TextStyle::callout));
    list->setWordWrap(true);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setAccessibleName(QStringLiteral("Help topics"));
    list->setStyleSheet(QStringLiteral("QListWidget { background: %1; padding: 6px; }"
                                       "QListWidget::item { padding: 0 8px; border-radius: 4px; }")
                            .arg(theme::panelBackground.name()));
    for (const HelpTopic& topic : topics)
        list->addItem(topic.title);
    sides->addWidget(list);

    page->setFrameShape(QFrame::NoFrame);
    page->document()->setDocumentMargin(pageMargin);
    QPalette palette = page->palette();
    palette.setColor(QPalette::Base, theme::windowBackground);
    page->setPalette(palette);
    page->setAccessibleName(QStringLiteral("Help text"));
    sides->addWidget(page, 1);

    connect(list, &QListWidget::currentRowChanged, this, &HelpView::showTopic);
    list->setCurrentRow(0);
    setFocusProxy(list);
}

QString HelpView::selectedID() const {
    return topics[static_cast<std::size_t>(list->currentRow())].id;
}

void HelpView::showTopic(int row) {
    const HelpTopic& topic = topics[static_cast<std::size_t>(row)];
    page->clear();
    QTextCursor cursor(page->document());
    addBlock(cursor, topic.title, textFont(TextStyle::title, QFont::Bold), spaceBelowTitle);
    for (const QString& paragraph : topic.paragraphs)
        addBlock(cursor, paragraph, textFont(TextStyle::body), spaceBelowParagraph);
    page->moveCursor(QTextCursor::Start);
}

} // namespace orvane::ui
