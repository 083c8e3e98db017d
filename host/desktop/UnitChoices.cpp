#include "host/desktop/UnitChoices.hpp"

#include <QComboBox>
#include <QHeaderView>
#include <algorithm>

#include "host/desktop/ToolButton.hpp"
#include "host/desktop/Words.hpp"
#include "host/readings/Units.hpp"

namespace vigil {
namespace {

/// In the order of the table of units.
std::vector<Unit> fitting(Unit unit) {
    std::vector<Unit> found;
    for (int i = 0; i <= static_cast<int>(Unit::InchOfMercuryPerThreeHours); ++i)
        if (unit != Unit::None && quantityOf(static_cast<Unit>(i)) == quantityOf(unit))
            found.push_back(static_cast<Unit>(i));
    return found;
}

}  // namespace

UnitChoices::UnitChoices(QWidget* parent) : QTableWidget(parent) {
    setColumnCount(3);
    setHorizontalHeaderLabels({say("Reading"), say("Now"), say("Unit")});
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    horizontalHeader()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    horizontalHeader()->setSectionResizeMode(2, QHeaderView::ResizeToContents);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeaderItem(0)->setTextAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    horizontalHeaderItem(1)->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    horizontalHeaderItem(2)->setTextAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    setWordWrap(false);
    setShowGrid(false);
    setEditTriggers(NoEditTriggers);
    setSelectionMode(NoSelection);
    setTabKeyNavigation(false);
    setAccessibleName(say("What arrives, and its units"));
}

int UnitChoices::addRow(const AgentProperty& reading) {
    const int row = rowCount();
    insertRow(row);
    m_keys.push_back(reading.propertyName());
    setItem(row, 0,
            new QTableWidgetItem(qt(reading.name().empty() ? reading.propertyName() : reading.name())));
    setItem(row, 1, new QTableWidgetItem);
    item(row, 1)->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    const auto shown = unitFromText(reading.unit());
    const auto units = fitting(shown.value_or(Unit::None));
    if (units.size() < 2) return row;
    auto* box = new QComboBox(this);
    nameBox(*box, say("Unit of %1").arg(item(row, 0)->text()));
    box->addItem(say("as the station (%1)").arg(qt(reading.unit())));
    const auto chosen = std::find_if(m_chosen.begin(), m_chosen.end(),
                                     [&](const auto& one) { return one.first == reading.propertyName(); });
    for (const Unit unit : units) {
        box->addItem(qt(unitText(unit)));
        if (chosen != m_chosen.end() && unitFromText(chosen->second) == unit)
            box->setCurrentIndex(box->count() - 1);
    }
    connect(box, &QComboBox::activated, this, [this, box, key = reading.propertyName()](int index) {
        std::erase_if(m_chosen, [&](const auto& one) { return one.first == key; });
        if (index > 0) m_chosen.emplace_back(key, utf8(box->itemText(index)));
    });
    setCellWidget(row, 2, box);
    return row;
}

void UnitChoices::show(const Readings& readings) {
    for (const AgentProperty& reading : readings.entries()) {
        const auto known = std::find(m_keys.begin(), m_keys.end(), reading.propertyName());
        const int row = known == m_keys.end() ? addRow(reading) : static_cast<int>(known - m_keys.begin());
        item(row, 1)->setText(reading.type() == kDateType
                                  ? momentText(Date(reading.value()), Date(reading.value()))
                                  : qt(reading.unitStringValueWithUnitShort()));
    }
}

}  // namespace vigil
