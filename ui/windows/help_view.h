#pragma once

#include "ui/windows/help_topics.h"

#include <QWidget>

#include <vector>

class QListWidget;
class QTextBrowser;

namespace orvane::ui {

/// The help: its topics on the left, the selected one on the right. Main thread.
class HelpView final : public QWidget {
  public:
    /// Selects the first topic.
    explicit HelpView(QWidget* parent = nullptr);

    /// The selected topic's `id`.
    [[nodiscard]] QString selectedID() const;

  private:
    void showTopic(int row);

    const std::vector<HelpTopic> topics = helpTopics();
    QListWidget* const list;
    QTextBrowser* const page;
};

} // namespace orvane::ui
