#pragma once

#include <QString>
#include <QTranslator>

namespace vigil::test {

/// Words that are a good third longer, as they are in German.
class Longer : public QTranslator {
  public:
    QString translate(const char*, const char* text, const char*, int) const override {
        const QString words = QString::fromUtf8(text);
        return words + QString(words.size() * 4 / 10, QLatin1Char('n'));
    }
    bool isEmpty() const override { return false; }
};

}  // namespace vigil::test
