#include "host/desktop/InterfaceLoader.hpp"

#include <QDoubleSpinBox>
#include <QFile>

#include "host/desktop/ConditionView.hpp"
#include "host/desktop/RuleView.hpp"
#include "host/desktop/Words.hpp"

namespace vigil {
namespace {

/// Shows 1 as "1" and not as "1.00".
class PlainNumberBox : public QDoubleSpinBox {
  public:
    using QDoubleSpinBox::QDoubleSpinBox;
    QString textFromValue(double value) const override { return numberWords(value, decimals()); }
};

}  // namespace

QWidget* InterfaceLoader::createWidget(const QString& className, QWidget* parent, const QString& name) {
    QWidget* made = nullptr;
    if (className == QLatin1String("PredicateEditor"))
        made = new ConditionView(parent);
    else if (className == QLatin1String("RuleEditor"))
        made = new RuleView(parent);
    else if (className == QLatin1String("QDoubleSpinBox"))
        made = new PlainNumberBox(parent);
    const bool own = made && className != QLatin1String("QDoubleSpinBox");
    if (made)
        made->setObjectName(name);
    else
        made = QUiLoader::createWidget(className, parent, name);
    static const QStringList kinds{QStringLiteral("QLineEdit"), QStringLiteral("QComboBox"),
                                   QStringLiteral("QCheckBox"), QStringLiteral("QPushButton")};
    if (made && (own || kinds.contains(className))) m_modelled.push_back(made);
    return made;
}

QWidget* InterfaceLoader::loadFile(const QString& path, QWidget* parent) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return nullptr;
    m_modelled.clear();
    return load(&file, parent);
}

}  // namespace vigil
