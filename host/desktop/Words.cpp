#include "host/desktop/Words.hpp"

#include <QCoreApplication>
#include <QDateTime>
#include <QLocale>
#include <cmath>

namespace vigil {

QString say(const char* english) {
    return QCoreApplication::translate("vigil", english);
}

QString ageText(double seconds) {
    if (!std::isfinite(seconds) || seconds < -5) return {};
    if (seconds < 1) return say("now");
    if (seconds < 120) return say("%1 s").arg(static_cast<int>(seconds));
    if (seconds < 7200) return say("%1 min").arg(static_cast<int>(seconds / 60));
    if (seconds < 172800) return say("%1 h").arg(static_cast<int>(seconds / 3600));
    return say("%1 d").arg(static_cast<qlonglong>(std::min(seconds / 86400, 1e9)));
}

QString momentText(Date when, Date now) {
    const double unix = when.secondsSinceUnix();
    if (!std::isfinite(unix) || std::abs(unix) > 4e11) return qt(when.description());
    const QDateTime local = QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(unix * 1000));
    const QDateTime today =
        QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(now.secondsSinceUnix() * 1000));
    if (local.date() == today.date()) return local.toString(QStringLiteral("HH:mm:ss"));
    if (std::abs(local.daysTo(today)) < 6) return QLocale().toString(local, QStringLiteral("ddd HH:mm"));
    return local.toString(QStringLiteral("yyyy-MM-dd HH:mm"));
}

QString numberWords(double value, int places) {
    if (!std::isfinite(value)) return std::isnan(value) ? QStringLiteral("–") : QString::number(value);
    QString text = QString::number(value, 'f', places);
    if (text.contains(QLatin1Char('.'))) {
        while (text.endsWith(QLatin1Char('0')))
            text.chop(1);
        if (text.endsWith(QLatin1Char('.'))) text.chop(1);
    }
    return text == QStringLiteral("-0") ? QStringLiteral("0") : text;
}

}  // namespace vigil
