#include "host/desktop/Card.hpp"

#include <QPainter>
#include <algorithm>

#include "host/desktop/Icons.hpp"
#include "host/desktop/Theme.hpp"

namespace vigil {
namespace {

constexpr int kId = Qt::UserRole + 1;
constexpr int kWords = Qt::UserRole + 2;
constexpr int kMood = Qt::UserRole + 3;
constexpr int kMargin = 10;

QColor Theme::*moodColour(Mood mood) {
    switch (mood) {
        case Mood::Good:
            return &Theme::good;
        case Mood::Accent:
            return &Theme::accent;
        case Mood::Warn:
            return &Theme::warn;
        case Mood::Bad:
            return &Theme::bad;
        case Mood::Calm:
            break;
    }
    return &Theme::muted;
}

const char* moodSign(Mood mood) {
    const char* const signs[] = {"no", "yes", "bell", "none", "warning"};
    return signs[static_cast<int>(mood)];
}

class CardDelegate : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const override {
        const int line = QFontMetrics(option.font).height();
        return {120, 2 * line + 2 * kMargin + 8};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        const bool chosen = option.state & QStyle::State_Selected;
        const bool focused = chosen && (option.state & QStyle::State_HasFocus);
        const bool hovered = option.state & QStyle::State_MouseOver;
        const QRectF box = QRectF(option.rect).adjusted(1.5, 3, -1.5, -3);
        painter->setPen(QPen(chosen ? theme().accent : theme().border, focused ? 2 : 1));
        painter->setBrush(chosen ? theme().accentSoft : hovered ? theme().raised : theme().card);
        painter->drawRoundedRect(box, 9, 9);
        paintText(*painter, box.adjusted(kMargin, kMargin - 4, -kMargin, -kMargin + 4), option.font, index);
        painter->restore();
    }

  private:
    static void paintText(QPainter& painter, const QRectF& box, QFont font, const QModelIndex& index) {
        const Mood mood = static_cast<Mood>(index.data(kMood).toInt());
        const int line = QFontMetrics(font).height();
        font.setWeight(QFont::DemiBold);
        painter.setFont(font);
        painter.setPen(theme().text);
        const QFontMetrics bold(font);
        painter.drawText(
            QRectF(box.left(), box.top(), box.width(), box.height() / 2), Qt::AlignVCenter,
            bold.elidedText(index.data().toString(), Qt::ElideRight, static_cast<int>(box.width())));
        font.setWeight(QFont::Normal);
        painter.setFont(font);
        const QRectF below(box.left(), box.top() + box.height() / 2, box.width(), box.height() / 2);
        const int sign = line - 3;
        const QPixmap pixmap = icon(QLatin1String(moodSign(mood)), moodColour(mood))
                                   .pixmap(QSize(sign, sign), painter.device()->devicePixelRatioF());
        painter.drawPixmap(QPointF(below.left(), below.center().y() - sign / 2.0), pixmap);
        painter.setPen(theme().*moodColour(mood));
        const QRectF words = below.adjusted(sign + 6, 0, 0, 0);
        painter.drawText(words, Qt::AlignVCenter,
                         QFontMetrics(font).elidedText(index.data(kWords).toString(), Qt::ElideRight,
                                                       static_cast<int>(words.width())));
    }
};

}  // namespace

const char* moodName(Mood mood) {
    const char* const names[] = {"calm", "good", "accent", "warn", "bad"};
    return names[static_cast<int>(mood)];
}

CardList::CardList(QWidget* parent) : QListView(parent) {
    setModel(&m_model);
    setItemDelegate(new CardDelegate(this));
    setEditTriggers(NoEditTriggers);
    setMouseTracking(true);
    setFrameShape(NoFrame);
    setUniformItemSizes(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAutoFillBackground(false);
    setStyleSheet(QStringLiteral("QListView{background:transparent}"));
    connect(this, &QListView::activated, this, [this](const QModelIndex& index) {
        if (onActivated) onActivated(index.data(kId).toLongLong());
    });
}

int CardList::rowOf(RecordId id) const {
    for (int row = 0; row < m_model.rowCount(); ++row)
        if (m_model.item(row)->data(kId).toLongLong() == id) return row;
    return -1;
}

RecordId CardList::chosen() const {
    return currentIndex().isValid() ? currentIndex().data(kId).toLongLong() : 0;
}

void CardList::choose(RecordId id) {
    const int row = rowOf(id);
    if (row >= 0) setCurrentIndex(m_model.index(row, 0));
}

void CardList::setMostShown(int cards) {
    m_mostShown = cards;
    fit();
}

void CardList::fit() {
    if (m_mostShown == 0) return;
    const int one = sizeHintForRow(0) > 0 ? sizeHintForRow(0) : 2 * fontMetrics().height() + 28;
    setFixedHeight(std::clamp(m_model.rowCount(), 1, m_mostShown) * one + 4);
}

void CardList::setCards(const std::vector<Card>& cards) {
    const RecordId before = chosen();
    m_filling = true;
    const int count = static_cast<int>(cards.size());
    if (m_model.rowCount() > count) m_model.removeRows(count, m_model.rowCount() - count);
    const auto put = [](QStandardItem& item, const QVariant& value, int role) {
        if (item.data(role) != value) item.setData(value, role);
    };
    for (int row = 0; row < count; ++row) {
        const Card& card = cards[static_cast<std::size_t>(row)];
        if (row >= m_model.rowCount()) m_model.appendRow(new QStandardItem);
        QStandardItem& item = *m_model.item(row);
        put(item, card.title, Qt::DisplayRole);
        put(item, QVariant::fromValue<qlonglong>(card.id), kId);
        put(item, card.words, kWords);
        put(item, static_cast<int>(card.mood), kMood);
        put(item, card.title + QStringLiteral(", ") + card.words, Qt::AccessibleTextRole);
        put(item, card.title + QLatin1Char('\n') + card.words, Qt::ToolTipRole);
    }
    if (rowOf(before) >= 0)
        choose(before);
    else if (count > 0)
        setCurrentIndex(m_model.index(0, 0));
    m_filling = false;
    fit();
    if (chosen() != before && onChosen) onChosen(chosen());
}

void CardList::paintEvent(QPaintEvent* event) {
    QListView::paintEvent(event);
    if (m_model.rowCount() > 0) return;
    QPainter painter(viewport());
    painter.setPen(theme().muted);
    painter.drawText(viewport()->rect().adjusted(0, 4, 0, 0), Qt::AlignLeft | Qt::AlignTop, m_none);
}

void CardList::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QListView::currentChanged(current, previous);
    if (!m_filling && onChosen) onChosen(chosen());
}

}  // namespace vigil
