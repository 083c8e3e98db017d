#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <atomic>
#include <functional>

namespace vigil {

/// A window shows news so often and no oftener.
inline constexpr int kRefreshMilliseconds = 100;

/// Makes of any number of rings a few calls: the first after a pause comes at once, the next ones a tenth of
/// a second apart. Main thread, but for `ring`.
class RefreshPace : public QObject {
  public:
    explicit RefreshPace(std::function<void()> call);

    /// Something has changed. Any thread; never waits.
    void ring();
    /// The same for what cannot wait for its turn, such as the first reading. Any thread.
    void ringAtOnce();

  protected:
    bool event(QEvent* event) override;

  private:
    void call();

    const std::function<void()> m_call;
    std::atomic<bool> m_rung{false};
    std::atomic<bool> m_atOnce{false};
    QElapsedTimer m_since;
    QTimer m_timer;
};

}  // namespace vigil
