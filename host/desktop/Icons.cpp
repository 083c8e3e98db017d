#include "host/desktop/Icons.hpp"

#include <QFile>
#include <QHash>
#include <QPainter>
#include <QSvgRenderer>

#include "host/desktop/Theme.hpp"

namespace vigil {
namespace {

QHash<QString, QIcon> g_icons;  // main thread

}  // namespace

QPixmap iconPixmap(const QString& name, int size, const QColor& colour, double ratio) {
    QFile file(QStringLiteral(":/icons/%1.svg").arg(name));
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

QIcon icon(const QString& name, const QColor& wanted) {
    const QColor colour = wanted.isValid() ? wanted : theme().text;
    const QString key = name + colour.name();
    if (const auto found = g_icons.constFind(key); found != g_icons.constEnd()) return *found;
    QIcon made;
    for (const int size : {16, 20, 24, 32})
        for (const double ratio : {1.0, 1.5, 2.0}) {
            const QPixmap pixmap = iconPixmap(name, size, colour, ratio);
            if (pixmap.isNull()) return {};
            made.addPixmap(pixmap);
            made.addPixmap(iconPixmap(name, size, theme().muted, ratio), QIcon::Disabled);
        }
    g_icons.insert(key, made);
    return made;
}

QIcon leadingIcon(const QIcon& picture) {
    QIcon made;
    for (const double ratio : {1.0, 1.5, 2.0})
        for (const auto mode : {QIcon::Normal, QIcon::Disabled}) {
            QPixmap wide(QSizeF(26 * ratio, 20 * ratio).toSize());
            wide.fill(Qt::transparent);
            QPainter painter(&wide);
            painter.drawPixmap(QRectF(0, 0, 20 * ratio, 20 * ratio),
                               picture.pixmap(QSize(20, 20), ratio, mode),
                               QRectF(QPointF(), QSizeF(picture.pixmap(QSize(20, 20), ratio, mode).size())));
            painter.end();
            wide.setDevicePixelRatio(ratio);
            made.addPixmap(wide, mode);
        }
    return made;
}

void forgetIcons() {
    g_icons.clear();
}

}  // namespace vigil
