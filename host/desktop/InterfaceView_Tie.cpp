#include <QAbstractButton>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QScrollBar>
#include <atomic>
#include <cmath>

#include "host/desktop/ConditionView.hpp"
#include "host/desktop/ControlViews.hpp"
#include "host/desktop/InterfaceView.hpp"
#include "host/desktop/RuleView.hpp"
#include "host/desktop/ToolButton.hpp"
#include "host/desktop/Words.hpp"
#include "platform/Button.hpp"

// Ties the widgets of a view to the table of its plug-in.

namespace vigil {
namespace {

/// A status grows with every fire; its end says how things are.
constexpr qsizetype kShownStatus = 2000;

double numberOf(const Value& value) {
    if (const auto* integer = value.as<std::int64_t>()) return static_cast<double>(*integer);
    const auto* real = value.as<double>();
    return real ? *real : 0;
}

/// A whole number stays one, as the archive tells them apart.
Value valueOf(double number) {
    if (std::floor(number) == number && std::abs(number) < 1e15)
        return Value(static_cast<std::int64_t>(number));
    return Value(number);
}

QString textOf(const Value& value) {
    const auto* text = value.as<std::string>();
    if (!text) return {};
    const QString whole = qt(*text);
    return whole.size() <= kShownStatus ? whole : QStringLiteral("…") + whole.right(kShownStatus);
}

}  // namespace

void InterfaceView::tie(QWidget& widget, const std::shared_ptr<Object>& model) {
    const QString bind = widget.property("bind").toString();
    const auto edit = [this] { edited(); };
    if (auto* view = dynamic_cast<ConditionView*>(&widget)) return tieCondition(*view, model, bind);
    if (auto* view = dynamic_cast<RuleView*>(&widget)) {
        const auto editor = std::dynamic_pointer_cast<RuleEditor>(model);
        if (!editor) return;
        m_actions = view;
        return view->attach(editor, edit, [this](std::int64_t row) { testRow(row); });
    }
    if (auto* box = qobject_cast<QCheckBox*>(&widget)) return tieCheckBox(*box, model, bind);
    if (auto* line = qobject_cast<QLineEdit*>(&widget)) {
        if (const auto field = std::dynamic_pointer_cast<TextField>(model)) attach(*line, field, edit);
    } else if (auto* popUp = qobject_cast<QComboBox*>(&widget)) {
        if (const auto held = std::dynamic_pointer_cast<PopUpButton>(model)) attach(*popUp, held, edit);
    }
}

void InterfaceView::tieCondition(ConditionView& view, const std::shared_ptr<Object>& model,
                                 const QString& bind) {
    const auto editor = std::dynamic_pointer_cast<PredicateEditor>(model);
    if (!editor) return;
    m_condition = &view;
    const auto* property = owner()->propertyNamed(utf8(bind));
    view.attach(
        editor,
        [this, editor, property](std::shared_ptr<ConditionPredicate> condition) {
            const Value value = condition ? Value(std::static_pointer_cast<Object>(condition)) : Value();
            const bool taken = property && property->set && property->set(*owner(), value);
            if (!taken) editor->setObjectValue(std::move(condition));
        },
        [this] { edited(); });
}

void InterfaceView::tieCheckBox(QCheckBox& box, const std::shared_ptr<Object>& model, const QString& bind) {
    const auto button = std::dynamic_pointer_cast<vigil::Button>(model);
    if (!button) return;
    if (bind != QLatin1String("evaluating")) return attach(box, button, [this] { edited(); });
    // The plug-in looks at its switch when it starts and stops, so turning it is stop, set, start.
    m_activate = &box;
    restyle(box, "switch", true);
    const auto show = [&box, weak = std::weak_ptr(button)] {
        const QSignalBlocker quiet(box);
        if (const auto held = weak.lock()) box.setChecked(held->state());
    };
    show();
    connect(&box, &QCheckBox::toggled, this, [this, show](bool on) {
        flush();
        const auto turned = m_session.site().setEvaluating(m_id, on);
        if (!turned) m_session.log().logLevel(kLogProblem, turned.error().message);
        show();
        m_session.ring();
    });
    keep(box, button->stateProperty().observe([&box, show] { onMain(box, show); }));
}

void InterfaceView::tieOther(QWidget& widget, const InterfaceProperty& property) {
    if (auto* spin = qobject_cast<QDoubleSpinBox*>(&widget)) {
        const auto show = [this, spin, &property] {
            const QSignalBlocker quiet(spin);
            if (!spin->hasFocus()) spin->setValue(numberOf(property.get(*owner())));
        };
        show();
        if (spin->accessibleName().isEmpty()) spin->setAccessibleName(say("Wait after an alert, in minutes"));
        connect(spin, &QDoubleSpinBox::valueChanged, this, [this, &property](double value) {
            if (property.set && property.set(*owner(), valueOf(value))) edited();
        });
        if (property.observe) keep(*spin, property.observe(*owner(), [spin, show] { onMain(*spin, show); }));
        return;
    }
    std::function<void()> show;
    if (auto* text = qobject_cast<QPlainTextEdit*>(&widget)) {
        text->setReadOnly(true);
        text->setFixedHeight(text->fontMetrics().lineSpacing() * 3 + 22);
        show = [this, text, &property] {
            text->setPlainText(textOf(property.get(*owner())));
            text->verticalScrollBar()->setValue(text->verticalScrollBar()->maximum());
        };
    } else if (auto* words = qobject_cast<QLabel*>(&widget)) {
        show = [this, words, &property] { words->setText(textOf(property.get(*owner()))); };
    }
    if (!show) return;
    show();
    // It changes with every cycle, on the thread of the cycle: noted there, shown at the next refresh.
    const auto changed = std::make_shared<std::atomic<bool>>(false);
    if (property.observe) keep(widget, property.observe(*owner(), [changed] { *changed = true; }));
    m_refreshes.push_back([show, changed] {
        if (changed->exchange(false)) show();
    });
}

void InterfaceView::tieAction(QWidget& widget) {
    const std::string action = utf8(widget.property("action").toString());
    auto* button = qobject_cast<QAbstractButton*>(&widget);
    if (action.empty() || !button || !owner()->actionNamed(action)) return;
    if (action == "testSound:") {
        m_testButtons.push_back(&widget);
        connect(button, &QAbstractButton::clicked, this, [this] { test(); });
        return;
    }
    connect(button, &QAbstractButton::clicked, this, [this, action] {
        m_session.perform(m_id, action);
        m_session.ring();
    });
}

}  // namespace vigil
