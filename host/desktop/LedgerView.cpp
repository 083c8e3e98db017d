#include "host/desktop/LedgerView.hpp"

#include <QEvent>
#include <QHeaderView>
#include <QVBoxLayout>

#include "host/desktop/Icons.hpp"
#include "host/desktop/Theme.hpp"
#include "host/desktop/Words.hpp"
#include "host/run/EffectLedger.hpp"

namespace vigil {

LedgerView::LedgerView(QWidget* parent) : QWidget(parent) {
    auto* column = new QVBoxLayout(this);
    // What stands in a table keeps a distance of its own, so that all of it begins at one edge.
    column->setContentsMargins(5, 6, 5, 6);
    column->setSpacing(4);
    m_failed = new QCheckBox(say("Failures only"), this);
    auto* line = new QHBoxLayout;
    line->setContentsMargins(6, 0, 6, 0);
    line->addWidget(m_failed);
    column->addLayout(line);
    m_list = new QTreeWidget(this);
    m_list->setColumnCount(5);
    m_list->setMinimumHeight(4 * fontMetrics().height());
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

// The colours of failures are the theme's.
void LedgerView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange && onAsk) onAsk();
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
        const bool good = !isFailure(*effect);
        item->setIcon(3, icon(QLatin1String(good ? "yes" : "warning"), good ? &Theme::good : &Theme::bad));
        if (!good) item->setForeground(3, theme().bad);
        item->setToolTip(4, qt(effect->detail));
        m_list->addTopLevelItem(item);
    }
    for (int i = 0; i < 4; ++i)
        m_list->resizeColumnToContents(i);
}

}  // namespace vigil
