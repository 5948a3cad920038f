#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace orvane::ui {

/// One page of the help. A plain value.
struct HelpTopic {
    /// The topic's permanent name.
    QString id;
    QString title;
    QStringList paragraphs;
};

/// Returns all topics of the help, in order. Any thread.
std::vector<HelpTopic> helpTopics();

} // namespace orvane::ui
