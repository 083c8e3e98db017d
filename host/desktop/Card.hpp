#pragma once

#include <QListView>
#include <QStandardItemModel>
#include <QStyledItemDelegate>

#include "host/site/SiteRecords.hpp"

namespace vigil {

/// How a state is shown: by words and a sign of its own, and by a colour besides.
enum class Mood { Calm, Good, Accent, Warn, Bad };
/// "calm", "good", "accent", "warn", "bad": the names of the style sheet.
const char* moodName(Mood mood);

/// A line of a list: a name, and how it is.
struct Card {
    RecordId id = 0;
    QString title{};
    QString words{};
    Mood mood = Mood::Calm;
};

/// A list of cards, of which one is chosen. Keeps the choice while its id is there. Main thread.
class CardList : public QListView {
  public:
    explicit CardList(QWidget* parent = nullptr);

    void setCards(const std::vector<Card>& cards);
    RecordId chosen() const;
    void choose(RecordId id);
    /// Grows with its cards up to so many of them; 0: as the layout says.
    void setMostShown(int cards);
    /// What stands where there is no card.
    void setNone(const QString& words) { m_none = words; }
    /// Called when another one is chosen; 0 for none.
    std::function<void(RecordId)> onChosen;
    std::function<void(RecordId)> onActivated;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

  private:
    int rowOf(RecordId id) const;

    void fit();

    QStandardItemModel m_model;
    QString m_none;
    int m_mostShown = 0;
    bool m_filling = false;
};

}  // namespace vigil
