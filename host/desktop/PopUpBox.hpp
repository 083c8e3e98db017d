#pragma once

#include <QComboBox>

namespace vigil {

/// A pop-up that shows with dots that its words go on, and the whole of them under the mouse; the wheel
/// scrolls the page and not the choice. Main thread.
class PopUpBox : public QComboBox {
  public:
    explicit PopUpBox(QWidget* parent);

    /// What is shown where no choice is chosen; it makes the box no wider.
    void setOtherwise(const QString& words);
    /// It is as wide as its longest words where there is room, and no narrower than so many letters.
    void setSmallest(int letters);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    bool event(QEvent* event) override;

  private:
    QString m_otherwise;
    int m_smallest = 0;
};

}  // namespace vigil
