#include "host/desktop/LedgerView.hpp"

#include <QHeaderView>
#include <QVBoxLayout>

#include "host/desktop/Icons.hpp"
#include "host/desktop/Theme.hpp"
#include "host/desktop/Words.hpp"
#include "host/run/EffectLedger.hpp"

namespace vigil {

LedgerView::LedgerView(QWidget* parent) : QWidget(parent) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(12, 8, 12, 12);
    column->setSpacing(8);
    m_failed = new QCheckBox(say("Failures only"), this);
    column->addWidget(m_failed);
    m_list = new QTreeWidget(this);
    m_list->setColumnCount(5);
    m_list->setHeaderLabels({say("When"), say("Monitor"), say("Action"), say("Result"), say("Detail")});
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setAccessibleName(say("Actions"));
    m_list->header()->setStretchLastSection(true);
    column->addWidget(m_list, 1);
    connect(m_failed, &QCheckBox::toggled, this, [this] {
        if (onAsk) onAsk();
    });
}

EffectQuery LedgerView::query() const {
    return {.limit = 200, .failed = m_failed->isChecked()};
}

void LedgerView::show(const std::vector<EffectRecord>& effects, Date now) {
    m_list->clear();
    for (auto effect = effects.rbegin(); effect != effects.rend(); ++effect) {
        const bool ended = effect->state == EffectRecord::Ended;
        const QString result = ended                                    ? qt(effect->result)
                               : effect->state == EffectRecord::Started ? say("under way")
                                                                        : say("queued");
        auto* item =
            new QTreeWidgetItem({momentText(effect->queued, now),
                                 qt(effect->title) + (effect->fire == 0 ? say(" (test)") : QString()),
                                 qt(std::string(effectKindName(effect->kind)) + ": " + effect->what), result,
                                 qt(effect->detail).simplified()});
        const bool good = !ended || effect->result == "succeeded";
        item->setIcon(3, icon(QLatin1String(good ? "yes" : "warning"), good ? theme().good : theme().bad));
        if (!good) item->setForeground(3, theme().bad);
        item->setToolTip(4, qt(effect->detail));
        m_list->addTopLevelItem(item);
    }
    for (int i = 0; i < 4; ++i)
        m_list->resizeColumnToContents(i);
}

}  // namespace vigil
