#include "host/desktop/Icons.hpp"

#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>
#include <algorithm>

namespace vigil {
namespace {

QString fileOf(const QString& name) {
    return QStringLiteral(":/icons/%1.svg").arg(name);
}

/// What is drawn anew for each size; `size` is in pixels of the device.
class DrawnIcon : public QIconEngine {
  public:
    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
        const double ratio = painter->device()->devicePixelRatioF();
        painter->drawPixmap(rect, pixmap((QSizeF(rect.size()) * ratio).toSize(), mode, state));
    }
    // A desktop that shows pictures of its own sizes, such as a tray, takes one of these.
    QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override {
        return {{16, 16}, {22, 22}, {24, 24}, {32, 32}, {48, 48}, {64, 64}};
    }
};

/// Its colour is looked up as late as it is drawn, so that a change of the theme reaches whoever holds one.
class LineIcon : public DrawnIcon {
  public:
    LineIcon(QString name, QColor Theme::*colour) : m_name(std::move(name)), m_colour(colour) {}
    QIconEngine* clone() const override { return new LineIcon(*this); }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State) override {
        const QColor colour = mode == QIcon::Disabled ? theme().muted : theme().*m_colour;
        const int side = std::min(size.width(), size.height());
        const QString key = QStringLiteral("vigil/%1/%2/%3x%4")
                                .arg(m_name, colour.name())
                                .arg(size.width())
                                .arg(size.height());
        if (side <= 0) return {};
        QPixmap made;
        if (QPixmapCache::find(key, &made)) return made;
        made = QPixmap(size);
        made.fill(Qt::transparent);
        QPainter painter(&made);
        painter.drawPixmap((size.width() - side) / 2, (size.height() - side) / 2,
                           iconPixmap(m_name, side, colour, 1));
        painter.end();
        QPixmapCache::insert(key, made);
        return made;
    }

  private:
    const QString m_name;
    QColor Theme::*const m_colour;
};

class LeadingIcon : public DrawnIcon {
  public:
    explicit LeadingIcon(QIcon picture) : m_picture(std::move(picture)) {}
    QIconEngine* clone() const override { return new LeadingIcon(*this); }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        if (size.isEmpty()) return {};
        QPixmap wide(size);
        wide.fill(Qt::transparent);
        QPainter painter(&wide);
        const int side = std::min(size.width(), size.height());
        m_picture.paint(&painter, 0, (size.height() - side) / 2, side, side, Qt::AlignCenter, mode, state);
        return wide;
    }

  private:
    const QIcon m_picture;
};

}  // namespace

QPixmap iconPixmap(const QString& name, int size, const QColor& colour, double ratio) {
    QFile file(fileOf(name));
    if (!file.open(QIODevice::ReadOnly)) return {};
    QByteArray svg = file.readAll();
    svg.replace("currentColor", colour.name().toUtf8());
    QSvgRenderer renderer(svg);
    QPixmap pixmap(QSize(size, size) * ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    renderer.render(&painter);
    painter.end();
    pixmap.setDevicePixelRatio(ratio);
    return pixmap;
}

QIcon icon(const QString& name, QColor Theme::*colour) {
    return QFile::exists(fileOf(name)) ? QIcon(new LineIcon(name, colour)) : QIcon();
}

QIcon leadingIcon(const QIcon& picture) {
    return QIcon(new LeadingIcon(picture));
}

}  // namespace vigil
