#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

namespace vigil {

/// A line picture of the window's own ("plus", "trash"), in the colour of texts or another one, sharp at
/// every scale. An empty icon where there is none of that name. Main thread.
QIcon icon(const QString& name, const QColor& colour = {});
QPixmap iconPixmap(const QString& name, int size, const QColor& colour, double ratio);
/// One with room on its right, for a button whose words follow.
QIcon leadingIcon(const QIcon& picture);
/// After a change of colours.
void forgetIcons();

}  // namespace vigil
