#include "host/desktop/InterfaceView.hpp"

#include <QGroupBox>
#include <QVBoxLayout>

#include "host/desktop/ConditionView.hpp"
#include "host/desktop/InterfaceLoader.hpp"
#include "host/desktop/RuleView.hpp"
#include "host/desktop/Words.hpp"
#include "host/kit/ExceptionText.hpp"
#include "platform/ClassRegistry.hpp"

// How a view comes to be. InterfaceView_Tie.cpp ties its widgets to the plug-in.

namespace vigil {
namespace {

/// What people change is written down so soon, many changes at once.
constexpr int kSaveMilliseconds = 300;

}  // namespace

InterfaceView::InterfaceView(SiteSession& session, RecordId plugIn, QWidget* parent)
    : QWidget(parent), m_session(session), m_id(plugIn) {
    if (HostedPlugIn* hosted = session.site().plugIn(plugIn)) m_plugIn = hosted->plugIn();
    m_save.setSingleShot(true);
    m_save.setInterval(kSaveMilliseconds);
    connect(&m_save, &QTimer::timeout, this, [this] { m_session.site().edited(m_id); });
}

InterfaceView::~InterfaceView() {
    flush();
}

void InterfaceView::edited() {
    m_save.start();
    m_session.ring();
}

void InterfaceView::flush() {
    if (!m_save.isActive()) return;
    m_save.stop();
    // Another object may stand for the monitor now, whose state this view knows nothing of.
    HostedPlugIn* hosted = m_session.site().plugIn(m_id);
    if (hosted && hosted->plugIn() == m_plugIn) m_session.site().edited(m_id);
}

InterfaceOwner* InterfaceView::owner() const {
    return m_plugIn ? m_plugIn->interfaceOwner() : nullptr;
}

Result<InterfaceView*> InterfaceView::make(SiteSession& session, RecordId plugIn, QWidget* parent) {
    auto made = std::unique_ptr<InterfaceView>(new InterfaceView(session, plugIn, parent));
    try {
        if (auto loaded = made->load(); !loaded) return loaded.error();
    } catch (...) {
        return Error{"its view cannot be shown: " + exceptionText(std::current_exception())};
    }
    return made.release();
}

Result<Done> InterfaceView::load() {
    HostedPlugIn* hosted = m_session.site().plugIn(m_id);
    if (!hosted || !owner()) return Error{"it has no view"};
    const auto bundle = ClassRegistry::shared().bundleForClass(m_plugIn->className());
    if (!bundle) return Error{"its class comes from no bundle"};
    auto models = hosted->call([&](QRVPlugIn& plugIn) {
        return m_session.site().interfaceFiles().instantiate(*bundle, plugIn.className(),
                                                             plugIn.interfaceOwner());
    });
    if (!models) return Error{m_session.site().interfaceFiles().lastError()};
    m_models = std::move(*models);
    InterfaceLoader loader;
    const std::string path = bundle->resourcePath + "/" + m_plugIn->className() + ".ui";
    QWidget* const whole = loader.loadFile(qt(path), this);
    if (!whole) return Error{path + ": " + utf8(loader.errorString())};
    if (loader.modelled().size() != m_models.size())
        return Error{path + ": " + std::to_string(loader.modelled().size()) + " widgets have models, and " +
                     std::to_string(m_models.size()) + " models came"};
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(whole);
    if (whole->layout()) {
        whole->layout()->setContentsMargins(0, 0, 0, 0);
        whole->layout()->setSpacing(10);
    }
    for (const QGroupBox* box : whole->findChildren<QGroupBox*>())
        if (box->layout()) box->layout()->setContentsMargins(0, 0, 0, 0);
    for (std::size_t i = 0; i < m_models.size(); ++i)
        tie(*loader.modelled()[i], m_models[i]);
    for (QWidget* widget : whole->findChildren<QWidget*>()) {
        const QString bind = widget->property("bind").toString();
        const bool modelled =
            std::find(loader.modelled().begin(), loader.modelled().end(), widget) != loader.modelled().end();
        const auto* property = modelled || bind.isEmpty() ? nullptr : owner()->propertyNamed(utf8(bind));
        if (property) tieOther(*widget, *property);
        tieAction(*widget);
    }
    return Done{};
}

void InterfaceView::refresh(const std::shared_ptr<const Readings>& readings, Date now) {
    if (m_condition) m_condition->judge(readings, now);
    for (const auto& refresh : m_refreshes)
        refresh();
}

}  // namespace vigil
