#pragma once

#include <QCheckBox>
#include <QTreeWidget>
#include <QWidget>
#include <functional>

#include "host/site/SiteFile.hpp"

namespace vigil {

/// What monitors did, and what came of it; failures stand out. Main thread.
class LedgerView : public QWidget {
  public:
    explicit LedgerView(QWidget* parent = nullptr);

    void show(const std::vector<EffectRecord>& effects, Date now);
    /// What is to be listed.
    EffectQuery query() const;
    /// Called when that changes.
    std::function<void()> onAsk;

  protected:
    void changeEvent(QEvent* event) override;

  private:
    QCheckBox* m_failed;
    QTreeWidget* m_list;
};

}  // namespace vigil
