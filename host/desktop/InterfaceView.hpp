#pragma once

#include <QCheckBox>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/desktop/SiteSession.hpp"
#include "platform/InterfaceOwner.hpp"

namespace vigil {

class ConditionView;
class RuleView;

/// The view of a plug-in from its interface file: the file's widgets, tied by name to the plug-in's table.
/// Main thread.
class InterfaceView : public QWidget {
  public:
    /// The session outlives the view. An error names the file and what is wrong with it.
    static Result<InterfaceView*> make(SiteSession& session, RecordId plugIn, QWidget* parent);
    ~InterfaceView() override;

    /// Shows what has changed without anybody telling.
    void refresh(const std::shared_ptr<const Readings>& readings, Date now);

    ConditionView* condition() const { return m_condition; }
    RuleView* actions() const { return m_actions; }
    /// The switch of the plug-in, where its view has one.
    QCheckBox* activate() const { return m_activate; }
    /// Writes down what was edited, at once.
    void flush();
    void test();
    void testRow(std::int64_t row);

  private:
    InterfaceView(SiteSession& session, RecordId plugIn, QWidget* parent);
    Result<Done> load();
    void tie(QWidget& widget, const std::shared_ptr<Object>& model);
    void tieCheckBox(QCheckBox& box, const std::shared_ptr<Object>& model, const QString& bind);
    void tieCondition(ConditionView& view, const std::shared_ptr<Object>& model, const QString& bind);
    void tieOther(QWidget& widget, const InterfaceProperty& property);
    void tieAction(QWidget& widget);
    void edited();
    void setTesting(bool on);
    void showTested(const std::vector<EffectRecord>& effects);
    InterfaceOwner* owner() const;

    SiteSession& m_session;
    const RecordId m_id;
    std::shared_ptr<QRVPlugIn> m_plugIn;
    std::vector<std::shared_ptr<Object>> m_models;
    ConditionView* m_condition = nullptr;
    RuleView* m_actions = nullptr;
    QCheckBox* m_activate = nullptr;
    std::vector<std::function<void()>> m_refreshes;
    std::vector<QWidget*> m_testButtons;
    QTimer m_save;
};

}  // namespace vigil
