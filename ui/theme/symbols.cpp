#include "ui/theme/symbols.h"

#include <QIconEngine>
#include <QPainter>
#include <QSvgRenderer>

#include <memory>
#include <utility>

namespace orvane::ui {

namespace {

constexpr double disabledOpacity = 0.35;

class SymbolEngine final : public QIconEngine {
  public:
    explicit SymbolEngine(QString resource)
        : path(std::move(resource)), renderer(std::make_shared<QSvgRenderer>(path)) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        painter->setOpacity(mode == QIcon::Disabled ? disabledOpacity : 1.0);
        renderer->render(painter, rect);
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return pixmap;
    }

    [[nodiscard]] QIconEngine* clone() const override { return new SymbolEngine(*this); }

  private:
    QString path;
    std::shared_ptr<QSvgRenderer> renderer;
};

} // namespace

QIcon symbol(const QString& name) {
    return QIcon(new SymbolEngine(QStringLiteral(":/icons/%1.svg").arg(name)));
}

QIcon applicationIcon() {
    return QIcon(new SymbolEngine(QStringLiteral(":/logo.svg")));
}

QPixmap logo(int size, double devicePixelRatio) {
    QPixmap pixmap(QSize(size, size) * devicePixelRatio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    QSvgRenderer(QStringLiteral(":/logo.svg")).render(&painter);
    pixmap.setDevicePixelRatio(devicePixelRatio);
    return pixmap;
}

} // namespace orvane::ui
