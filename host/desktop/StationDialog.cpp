#include "host/desktop/StationDialog.hpp"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QPointer>
#include <QVBoxLayout>

#include "host/desktop/ToolButton.hpp"
#include "host/desktop/Words.hpp"
#include "host/feeds/FeedUrl.hpp"

namespace vigil {
namespace {

struct Kind {
    const char* words;
    const char* begins;
    const char* example;
    const char* help;
};

constexpr Kind kKinds[] = {
    {"Weather that is made up",
     "simulated:", "simulated:", "For trying things: the same weather for the same seed."},
    {"A console that uploads to this machine", "upload:", "upload://127.0.0.1:8090/",
     "Let the console send to this machine's address and port, by the protocol of a weather service."},
    {"A broker (MQTT)", "mqtt", "mqtt://broker.local/sensors/roof",
     "Every message of the topic is a set of readings."},
    {"A program on this machine", "exec:", "exec:rtl_433 -F json", "It writes one JSON object a line."},
    {"A file that grows", "lines:", "lines:/var/log/weather.jsonl", "One JSON object a line."},
    {"A recording (CSV)", "csv:", "csv:examples/storm.csv",
     "Replayed, an hour in a minute unless said otherwise."},
};

}  // namespace

StationDialog::StationDialog(StationRecord record, std::string folder, QWidget* parent)
    : QDialog(parent), m_record(std::move(record)) {
    setWindowTitle(m_record.id == 0 ? say("Add a station") : say("Edit the station"));
    setMinimumWidth(640);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(20, 18, 20, 16);
    column->setSpacing(12);
    auto* form = new QFormLayout;
    form->setVerticalSpacing(10);
    form->setHorizontalSpacing(14);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    m_name = new QLineEdit(qt(m_record.name), this);
    m_name->setPlaceholderText(say("Home"));
    form->addRow(say("&Name"), m_name);
    m_kind = new QComboBox(this);
    for (const Kind& kind : kKinds)
        m_kind->addItem(say(kind.words));
    form->addRow(say("&Readings come from"), m_kind);
    m_feed = new QLineEdit(this);
    form->addRow(say("A&ddress"), m_feed);
    m_help = label({}, "muted", this);
    m_help->setWordWrap(true);
    form->addRow({}, m_help);
    m_units = new QComboBox(this);
    m_units->addItems({say("Metric"), say("US")});
    m_units->setCurrentIndex(m_record.usUnits ? 1 : 0);
    form->addRow(say("&Units"), m_units);
    column->addLayout(form);
    m_mistake = label({}, "error", this);
    m_mistake->setWordWrap(true);
    column->addWidget(m_mistake);
    makePreview(*column);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    m_take = buttons->addButton(m_record.id == 0 ? say("Add") : say("Change"), QDialogButtonBox::AcceptRole);
    m_take->setDefault(true);
    column->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_kind, &QComboBox::activated, this, [this](int index) { kindChosen(index); });
    connect(m_feed, &QLineEdit::textChanged, this, [this] { check(); });
    connect(m_name, &QLineEdit::textChanged, this, [this] { check(); });
    int known = 0;
    for (int i = 0; i < static_cast<int>(std::size(kKinds)); ++i)
        if (!m_record.feed.empty() && m_record.feed.starts_with(kKinds[i].begins)) known = i;
    m_kind->setCurrentIndex(known);
    kindChosen(known);
    if (!m_record.feed.empty()) m_feed->setText(qt(m_record.feed));
    connect(m_units, &QComboBox::activated, this, [this] { listen(); });
    m_pause.setSingleShot(true);
    m_pause.setInterval(500);
    connect(&m_pause, &QTimer::timeout, this, [this] { listen(); });
    const auto told = [where = QPointer<StationDialog>(this)](std::function<void(StationDialog&)> call) {
        QMetaObject::invokeMethod(
            qApp,
            [where, call = std::move(call)] {
                if (where) call(*where);
            },
            Qt::QueuedConnection);
    };
    m_preview = std::make_unique<FeedPreview>(
        std::move(folder),
        FeedPreview::Heard{.readings =
                               [told](std::shared_ptr<const Readings> readings) {
                                   told([readings](StationDialog& dialog) {
                                       dialog.m_arrives->show(*readings);
                                       dialog.m_heard->setText(
                                           say("%1 readings").arg(readings->entries().size()));
                                       restyle(*dialog.m_heard, "chip", QLatin1String("good"));
                                   });
                               },
                           .words =
                               [told](const std::string& words, bool bad) {
                                   told([words, bad](StationDialog& dialog) {
                                       dialog.m_heard->setText(qt(words).left(80));
                                       dialog.m_heard->setToolTip(qt(words));
                                       restyle(*dialog.m_heard, "chip", QLatin1String(bad ? "bad" : "calm"));
                                   });
                               }});
    listen();
}

StationDialog::~StationDialog() = default;

void StationDialog::makePreview(QVBoxLayout& column) {
    auto* line = new QHBoxLayout;
    line->addWidget(label(say("What arrives"), "heading", this));
    line->addStretch(1);
    m_heard = new QLabel(this);
    m_heard->setProperty("chip", QLatin1String("calm"));
    line->addWidget(m_heard);
    column.addLayout(line);
    m_arrives = new UnitChoices(this);
    m_arrives->setChosen(m_record.units);
    m_arrives->setMinimumHeight(200);
    column.addWidget(m_arrives, 1);
}

// A feed of this site's own that is running has its place taken; the station's readings stand in the window
// then.
void StationDialog::listen() {
    const std::string feed = utf8(m_feed->text().trimmed());
    m_heard->setText(feed.empty() ? say("no address") : say("starting"));
    m_preview->listen(m_mistake->isVisibleTo(this) ? std::string() : feed, m_units->currentIndex() == 1);
}

void StationDialog::kindChosen(int index) {
    const Kind& kind = kKinds[index];
    m_feed->setText(QLatin1String(kind.example));
    m_help->setText(say(kind.help));
    check();
}

void StationDialog::check() {
    QString wrong;
    const std::string feed = utf8(m_feed->text().trimmed());
    if (!feed.empty())
        if (const auto url = FeedUrl::parse(feed); !url) wrong = qt(url.error().message);
    m_mistake->setText(wrong);
    m_mistake->setVisible(!wrong.isEmpty());
    m_pause.start();
    m_take->setEnabled(wrong.isEmpty() && !m_name->text().trimmed().isEmpty());
}

StationRecord StationDialog::record() const {
    StationRecord record = m_record;
    record.name = utf8(m_name->text().trimmed());
    record.feed = utf8(m_feed->text().trimmed());
    record.units = m_arrives->chosen();
    record.usUnits = m_units->currentIndex() == 1;
    return record;
}

}  // namespace vigil
