#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

#include "host/desktop/Theme.hpp"

namespace vigil {

/// A line picture of the window's own ("plus", "trash"), sharp at every scale, in that colour of whatever
/// theme is in use while it is drawn. An empty icon where there is none of that name. Main thread.
QIcon icon(const QString& name, QColor Theme::*colour = &Theme::text);
QPixmap iconPixmap(const QString& name, int size, const QColor& colour, double ratio);
/// One with room on its right, for a button whose words follow.
QIcon leadingIcon(const QIcon& picture);

}  // namespace vigil
