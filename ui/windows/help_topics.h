#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace orvane::ui {

/// One page of the help. A plain value.
struct HelpTopic {
    /// Names the topic for good.
    QString id;
    QString title;
    QStringList paragraphs;
};

/// All of the help, in its order. Any thread.
std::vector<HelpTopic> helpTopics();

} // namespace orvane::ui
