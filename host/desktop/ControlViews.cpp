#include "host/desktop/ControlViews.hpp"

#include <QCoreApplication>
#include <QPointer>
#include <QThread>

#include "host/desktop/Words.hpp"

namespace vigil {
namespace {

class Kept : public QObject {
  public:
    Kept(QObject& parent, std::shared_ptr<const void> what) : QObject(&parent), m_what(std::move(what)) {}

  private:
    std::shared_ptr<const void> m_what;
};

}  // namespace

void keep(QObject& object, std::shared_ptr<const void> what) {
    new Kept(object, std::move(what));
}

void onMain(QObject& object, std::function<void()> call) {
    if (QThread::currentThread() == object.thread()) return call();
    QMetaObject::invokeMethod(
        qApp,
        [where = QPointer<QObject>(&object), call = std::move(call)] {
            if (where) call();
        },
        Qt::QueuedConnection);
}

void attach(QLineEdit& view, const std::shared_ptr<TextField>& model, WhenEdited edited) {
    const auto show = [&view, weak = std::weak_ptr(model)] {
        const auto held = weak.lock();
        const QSignalBlocker quiet(view);
        if (held && view.text() != qt(held->stringValue())) view.setText(qt(held->stringValue()));
    };
    show();
    QObject::connect(&view, &QLineEdit::textChanged, &view, [model, edited](const QString& text) {
        model->setStringValue(utf8(text));
        if (edited) edited();
    });
    keep(view, model->stringValueProperty().observe([&view, show] { onMain(view, show); }));
}

void attach(QComboBox& view, const std::shared_ptr<PopUpButton>& model, WhenEdited edited) {
    const auto show = [&view, weak = std::weak_ptr(model)] {
        const auto held = weak.lock();
        if (!held) return;
        QStringList titles;
        for (const std::string& title : held->itemTitles())
            titles << qt(title);
        const QSignalBlocker quiet(view);
        QStringList shown;
        for (int i = 0; i < view.count(); ++i)
            shown << view.itemText(i);
        if (shown != titles) {
            view.clear();
            view.addItems(titles);
        }
        const auto selected = held->titleOfSelectedItem();
        view.setCurrentIndex(selected ? view.findText(qt(*selected), Qt::MatchExactly) : -1);
    };
    show();
    QObject::connect(&view, &QComboBox::activated, &view, [&view, model, edited](int index) {
        model->selectItemWithTitle(utf8(view.itemText(index)));
        if (edited) edited();
    });
    keep(view, model->selectionProperty().observe([&view, show] { onMain(view, show); }));
}

void attach(QCheckBox& view, const std::shared_ptr<vigil::Button>& model, WhenEdited edited) {
    const auto show = [&view, weak = std::weak_ptr(model)] {
        const QSignalBlocker quiet(view);
        if (const auto held = weak.lock()) view.setChecked(held->state());
    };
    show();
    QObject::connect(&view, &QCheckBox::toggled, &view, [model, edited](bool on) {
        model->setState(on);
        if (edited) edited();
    });
    keep(view, model->stateProperty().observe([&view, show] { onMain(view, show); }));
}

}  // namespace vigil
