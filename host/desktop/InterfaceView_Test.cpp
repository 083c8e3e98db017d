#include "host/desktop/InterfaceView.hpp"

#include <QPointer>
#include <algorithm>

#include "host/desktop/RuleView.hpp"
#include "host/desktop/Words.hpp"

// Trying a monitor's actions by hand.

namespace vigil {
namespace {

/// What a row of sounds or speech asks for; absent for other actions. Of a sentence of the station's the
/// words are the monitor's own.
struct Heard {
    EffectRecord::Kind kind;
    std::string what;
};

std::optional<Heard> heardOf(const RuleEditor::DisplayValues& row) {
    const auto action = row.empty() ? std::nullopt : stringValue(row[0]);
    if (!action || row.size() < 2) return std::nullopt;
    if (*action == "Play Sound") return Heard{EffectRecord::Sound, titleOfSelectedItem(row[1]).value_or("")};
    if (*action == "Speak Text") return Heard{EffectRecord::Speech, stringValue(row[1]).value_or("")};
    if (*action == "Speak Conditions" && stringValue(row[1]) != "No") return Heard{EffectRecord::Speech, ""};
    return std::nullopt;
}

bool isOf(const EffectRecord& effect, const Heard& heard) {
    return effect.kind == heard.kind && (heard.what.empty() || effect.what == heard.what);
}

QString resultWords(const std::optional<EffectRecord>& effect) {
    if (!effect) return say("nothing came of it");
    if (effect->state != EffectRecord::Ended) return say("under way");
    const QString detail = qt(effect->detail).section(QLatin1Char('\n'), 0, 0);
    return qt(effect->result) + (detail.isEmpty() ? QString() : QStringLiteral(": ") + detail);
}

}  // namespace

void InterfaceView::setTesting(bool on) {
    for (QWidget* button : m_testButtons)
        button->setEnabled(!on);
    if (m_actions) m_actions->setTesting(on);
}

void InterfaceView::test() {
    flush();
    setTesting(true);
    const Date since = m_session.site().world().now();
    const QPointer<InterfaceView> view(this);
    const bool begun = m_session.test(m_id, [view, since] {
        if (!view) return;
        view->setTesting(false);
        const auto tell = [view](const std::vector<EffectRecord>& effects) {
            if (view) view->showTested(effects);
        };
        view->m_session.watchEffects(view->m_id, since, tell);
    });
    if (!begun) setTesting(false);
}

// A test goes through the rows from the first to the last, and so does the ledger.
void InterfaceView::showTested(const std::vector<EffectRecord>& effects) {
    if (!m_actions) return;
    auto next = effects.begin();
    const RuleEditor& editor = *m_actions->editor();
    for (std::int64_t row = 0; row < editor.numberOfRows() && m_actions->rowAt(row); ++row) {
        const auto heard = heardOf(editor.displayValuesForRow(row));
        if (!heard) continue;
        const auto found = std::find_if(next, effects.end(),
                                        [&](const EffectRecord& effect) { return isOf(effect, *heard); });
        if (found == effects.end()) {
            m_actions->rowAt(row)->setResult(resultWords(std::nullopt), /*failed=*/false);
            continue;
        }
        next = found + 1;
        m_actions->rowAt(row)->setResult(resultWords(*found), isFailure(*found));
    }
}

void InterfaceView::testRow(std::int64_t row) {
    flush();
    setTesting(true);
    const QPointer<RuleRow> shown(m_actions->rowAt(row));
    if (shown) shown->setResult(say("testing…"), /*failed=*/false);
    const auto tell = [view = QPointer<InterfaceView>(this),
                       shown](const std::optional<EffectRecord>& effect) {
        if (view) view->setTesting(false);
        if (shown) shown->setResult(resultWords(effect), !effect || isFailure(*effect));
    };
    if (!m_session.testRow(m_id, m_actions->editor(), row, tell)) setTesting(false);
}

}  // namespace vigil
