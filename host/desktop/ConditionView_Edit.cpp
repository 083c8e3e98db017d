#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>

#include "host/desktop/ConditionTree.hpp"
#include "host/desktop/ConditionView.hpp"

// What the rows ask for, and moving them.

namespace vigil {

ConditionRowCalls ConditionView::calls() {
    const auto parts = [this](std::size_t group) {
        std::size_t count = 0;
        const auto rows = m_editor->rows();
        for (std::size_t row = 1; row < rows.size(); ++row)
            count += rows[row].group == group ? 1 : 0;
        return count;
    };
    ConditionRowCalls calls;
    calls.choose = [this](std::size_t row, std::size_t popUp, std::size_t choice) {
        static_cast<void>(m_editor->choose(row, popUp, choice));
    };
    calls.setText = [this](std::size_t row, const std::string& text) {
        m_typing = m_editor->rows().at(row).id + 1;
        auto taken = m_editor->setValueText(row, text);
        m_typing = 0;
        return taken;
    };
    calls.addRow = [this, parts](std::size_t group) {
        const std::size_t count = parts(group);
        if (m_editor->addRow(group, count)) focusRow(m_editor->numberOfRows() - 1);
    };
    calls.addGroup = [this, parts](std::size_t group) {
        const std::size_t before = m_editor->numberOfRows();
        if (!m_editor->addGroup(group, parts(group))) return;
        // A group begins with a comparison: an empty one says nothing.
        const auto rows = m_editor->rows();
        for (std::size_t row = rows.size(); row-- > 1;)
            if (rows[row].isGroup && rows[row].group == group) {
                static_cast<void>(m_editor->addRow(row, 0));
                return focusRow(row + 1);
            }
        static_cast<void>(before);
    };
    calls.remove = [this](std::size_t row) {
        if (m_editor->removeRow(row)) focusRow(row > 0 ? row - 1 : 0);
    };
    calls.moveUp = [this](std::size_t row) { move(row, /*up=*/true); };
    calls.moveDown = [this](std::size_t row) { move(row, /*up=*/false); };
    calls.valuesSeen = [this](const std::string& key) {
        const auto found = m_seen.find(key);
        return found == m_seen.end() ? std::vector<std::string>{} : found->second;
    };
    return calls;
}

void ConditionView::setNumber(std::size_t comparison, double value) {
    const auto rows = m_editor->rows();
    for (std::size_t row = 0; row < rows.size(); ++row) {
        if (rows[row].isGroup || comparison-- > 0) continue;
        static_cast<void>(m_editor->setValue(row, value));
        return;
    }
}

void ConditionView::focusRow(std::size_t row) {
    if (ConditionRow* const found = rowAt(row)) found->firstField()->setFocus(Qt::OtherFocusReason);
}

void ConditionView::move(std::size_t row, bool up) {
    const auto rows = m_editor->rows();
    const auto place = up ? placeAbove(rows, row) : placeBelow(rows, row);
    if (!place) return;
    auto moved = conditionWithMoved(rows, row, place->group, place->position);
    if (!moved) return;
    const std::string condition = rows[row].condition;
    note(moved->printed(), 0);
    replaceWith(std::move(moved));
    // It is another row now; the same words tell which.
    const auto after = m_editor->rows();
    for (std::size_t i = 0; i < after.size(); ++i)
        if (!condition.empty() && after[i].condition == condition) return focusRow(i);
}

void ConditionView::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasFormat(QLatin1String(kConditionRowMime))) event->acceptProposedAction();
}

void ConditionView::dropEvent(QDropEvent* event) {
    const auto row =
        static_cast<std::size_t>(event->mimeData()->data(QLatin1String(kConditionRowMime)).toULongLong());
    const auto rows = m_editor->rows();
    RowPlace place{0, rows.size()};
    for (std::size_t i = 1; i < rows.size(); ++i) {
        const QRect box = rowAt(i)->geometry();
        if (event->position().y() > box.center().y()) continue;
        place = {rows[i].group, rows[i].position};
        break;
    }
    if (auto moved = conditionWithMoved(rows, row, place.group, place.position)) {
        note(moved->printed(), 0);
        replaceWith(std::move(moved));
    }
    event->acceptProposedAction();
}

}  // namespace vigil
