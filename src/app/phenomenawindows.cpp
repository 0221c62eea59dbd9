// The phenomena search window.

#include "app/phenomenawindows.h"

#include <QApplication>
#include <QComboBox>
#include <QDateEdit>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QThread>
#include <QVBoxLayout>

#include <atomic>
#include <thread>

#include "app/appcontext.h"
#include "app/mapwindow.h"
#include "app/resulttablepanel.h"
#include "map/skyobjects.h"
#include "solarsystem/minorbodies.h"
#include "solarsystem/minorsource.h"
#include "solarsystem/planets.h"
#include "util/progress.h"

namespace orv {

namespace {

QString ToQ(const std::string& s) { return QString::fromStdString(s); }

QComboBox* BodyChoices(QWidget* parent, int initial)
{
    auto* box = new QComboBox(parent);
    for (int b = 0; b < kBodyCount; ++b) {
        const std::string_view name = BodyName(b);
        box->addItem(QString::fromLatin1(name.data(), static_cast<int>(name.size())), b);
    }
    box->addItem(QObject::tr("Earth (perihelion)"), kPhenomenaChoiceEarth);
    box->addItem(QObject::tr("Asteroid"), kPhenomenaChoiceAsteroid);
    box->addItem(QObject::tr("Comet"), kPhenomenaChoiceComet);
    box->addItem(QObject::tr("Star"), kPhenomenaChoiceStar);
    box->addItem(QObject::tr("Deep sky object"), kPhenomenaChoiceDeepSky);
    box->addItem(QObject::tr("All planets"), kPhenomenaChoiceAllPlanets);
    box->setCurrentIndex(box->findData(initial));
    return box;
}

}  // namespace

std::optional<std::string> ValidatePhenomenaChoice(const PhenomenaChoice& c)
{
    if (c.kind < 0 || c.kind >= kPhenomenonKindCount) return "You must select the type of event to search for.";
    if (!std::isfinite(c.durationDays) || !(c.durationDays > 0.0))
        return "You must specify a positive duration for the search";
    if (!std::isfinite(c.intervalHours) || !(c.intervalHours > 0.0))
        return "You must specify a positive calculation interval.";
    const int count = PhenomenonBodyCount(static_cast<PhenomenonKind>(c.kind));
    for (int i = 0; i < count; ++i) {
        const PhenomenaBodyChoice& b = i == 0 ? c.first : c.second;
        const bool named = b.choice >= kPhenomenaChoiceAsteroid && b.choice <= kPhenomenaChoiceDeepSky;
        if (b.choice < 0 || b.choice > kPhenomenaChoiceAllPlanets) return "Please select a planet name from the list.";
        if (named && b.name.empty()) {
            switch (b.choice) {
            case kPhenomenaChoiceAsteroid: return "Please select an asteroid name from the list.";
            case kPhenomenaChoiceComet: return "Please select a comet name from the list.";
            case kPhenomenaChoiceStar: return "Please enter a star name.";
            default: return "Please enter a deep sky object name.";
            }
        }
    }
    return std::nullopt;
}

CPhenomenaDialog::CPhenomenaDialog(const CObserverDoc& site, CAppContext& app, QWidget* parent)
    : QDialog(parent), m_site(site), m_app(app)
{
    setWindowTitle(tr("Phenomena Search"));
    auto* layout = new QVBoxLayout(this);
    auto* form = new QFormLayout;
    m_kind = new QComboBox(this);
    m_kind->addItem(QString(), -1);
    for (int k = 0; k < kPhenomenonKindCount; ++k) {
        PhenomenaRequest r;
        r.kind = static_cast<PhenomenonKind>(k);
        QString text = ToQ(std::string(PhenomenonHeading(r.kind)));
        if (r.kind == PhenomenonKind::StationaryLongitude) text += tr(" ... in longitude");
        if (r.kind == PhenomenonKind::StationaryRA) text += tr(" ... in RA");
        m_kind->addItem(text, k);
    }
    m_first = BodyChoices(this, kBodyMoon);
    m_firstName = new QLineEdit(this);
    m_second = BodyChoices(this, kBodySun);
    m_secondName = new QLineEdit(this);
    auto row = [this](QComboBox* box, QLineEdit* name) {
        auto* h = new QHBoxLayout;
        h->addWidget(box);
        h->addWidget(name, 1);
        name->setPlaceholderText(tr("name or number"));
        return h;
    };
    m_start = new QDateEdit(QDate(site.LocalTime().year, site.LocalTime().month, site.LocalTime().day), this);
    m_start->setDisplayFormat(QStringLiteral("yyyy-MM-dd"));
    m_start->setCalendarPopup(true);
    m_duration = new QDoubleSpinBox(this);
    m_duration->setRange(-1.0e6, 1.0e6);
    m_duration->setDecimals(1);
    m_duration->setValue(365.0);
    m_duration->setSuffix(tr(" days"));
    m_interval = new QDoubleSpinBox(this);
    m_interval->setRange(-1.0e4, 1.0e4);
    m_interval->setDecimals(2);
    m_interval->setValue(1.0);
    m_interval->setSuffix(tr(" hours"));
    form->addRow(tr("&Event:"), m_kind);
    // A row holding a layout has no buddy of its own: the labels name the
    // lists, so that their shortcuts work and the ampersand is not shown.
    auto* firstLabel = new QLabel(tr("&First body:"), this);
    firstLabel->setBuddy(m_first);
    auto* secondLabel = new QLabel(tr("&Second body:"), this);
    secondLabel->setBuddy(m_second);
    form->addRow(firstLabel, row(m_first, m_firstName));
    form->addRow(secondLabel, row(m_second, m_secondName));
    form->addRow(tr("S&tart (0h UT):"), m_start);
    form->addRow(tr("&Duration:"), m_duration);
    form->addRow(tr("Calculation &interval:"), m_interval);
    layout->addLayout(form);
    auto* search = new QPushButton(tr("&Search"), this);
    search->setDefault(true);
    layout->addWidget(search, 0, Qt::AlignLeft);
    m_message = new QLabel(this);
    layout->addWidget(m_message);
    m_panel = new CResultTablePanel(app, CResultTablePanel::Sorting::ByColumn, CResultTablePanel::Selection::Extended,
                                    CResultTablePanel::Title::Shown, this);
    m_panel->SetReportName(QStringLiteral("Phenomena"));
    layout->addWidget(m_panel, 1);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    connect(search, &QPushButton::clicked, this, [this] { Search(); });
    for (QComboBox* box : {m_kind, m_first, m_second})
        connect(box, &QComboBox::currentIndexChanged, this, [this] { UpdateEnabled(); });
    UpdateEnabled();
    resize(950, 620);
}

void CPhenomenaDialog::UpdateEnabled()
{
    const int kind = m_kind->currentData().toInt();
    const int count = kind >= 0 ? PhenomenonBodyCount(static_cast<PhenomenonKind>(kind)) : 2;
    const auto named = [](QComboBox* box) {
        const int v = box->currentData().toInt();
        return v >= kPhenomenaChoiceAsteroid && v <= kPhenomenaChoiceDeepSky;
    };
    m_first->setEnabled(count >= 1);
    m_firstName->setEnabled(count >= 1 && named(m_first));
    m_second->setEnabled(count >= 2);
    m_secondName->setEnabled(count >= 2 && named(m_second));
}

PhenomenaChoice CPhenomenaDialog::Choice() const
{
    PhenomenaChoice c;
    c.kind = m_kind->currentData().toInt();
    c.first = {m_first->currentData().toInt(), m_firstName->text().trimmed().toStdString()};
    c.second = {m_second->currentData().toInt(), m_secondName->text().trimmed().toStdString()};
    const QDate d = m_start->date();
    c.jdUTStart = CObserverDoc::JulianDate(d.year(), d.month(), d.day());
    c.durationDays = m_duration->value();
    c.intervalHours = m_interval->value();
    return c;
}

std::optional<PhenomenonBody> CPhenomenaDialog::Resolve(const PhenomenaBodyChoice& c, std::string& message)
{
    if (c.choice >= 0 && c.choice < kBodyCount) return PhenomenonBody::Planet(c.choice);
    if (c.choice == kPhenomenaChoiceEarth) {
        PhenomenonBody b = PhenomenonBody::Planet(kBodyEarth);
        b.name = "Earth";
        return b;
    }
    if (c.choice == kPhenomenaChoiceAsteroid || c.choice == kPhenomenaChoiceComet) {
        CMinorCatalogs& catalogs = m_app.MinorCatalogs().Get();
        const bool asteroid = c.choice == kPhenomenaChoiceAsteroid;
        const auto found = asteroid ? catalogs.FindAsteroids(c.name) : catalogs.FindComets(c.name);
        std::optional<TwoBodyOrbit> orbit;
        PhenomenonBody b;
        b.type = PhenomenonBody::Type::Minor;
        if (found.size() == 1) {
            if (asteroid) {
                orbit = OrbitOf(catalogs.Asteroids()[found.front()]);
                b.name = AsteroidDesignation(catalogs.Asteroids()[found.front()]);
            } else {
                orbit = OrbitOf(catalogs.Comets()[found.front()]);
                b.name = catalogs.Comets()[found.front()].name;
            }
        }
        if (!orbit) {
            message = asteroid ? "Please select an asteroid name from the list." : "Please select a comet name from the list.";
            return std::nullopt;
        }
        b.orbit = *orbit;
        return b;
    }
    const FindResult found = m_app.Components().objects.Resolve(c.name, m_site);
    if (found.status != FindStatus::Found) {
        message = found.message.empty() ? (c.choice == kPhenomenaChoiceStar ? "Please enter a star name."
                                                                            : "Please enter a deep sky object name.")
                                        : found.message;
        return std::nullopt;
    }
    PhenomenonBody b;
    b.type = PhenomenonBody::Type::Fixed;
    b.raJ2000Rad = found.matches.front().raJ2000Rad;
    b.decJ2000Rad = found.matches.front().decJ2000Rad;
    b.name = found.matches.front().designation;
    return b;
}

std::vector<PhenomenonBody> CPhenomenaDialog::ResolveAll(const PhenomenaBodyChoice& c, std::string& message)
{
    if (c.choice == kPhenomenaChoiceAllPlanets) return AllPlanetBodies();
    if (auto body = Resolve(c, message)) return {*body};
    return {};
}

bool CPhenomenaDialog::Search()
{
    if (m_running) return false;
    const PhenomenaChoice c = Choice();
    const auto warn = [this](const std::string& text) {
        QMessageBox::warning(this, QApplication::applicationName(), ToQ(text));
        return false;
    };
    if (const auto problem = ValidatePhenomenaChoice(c)) return warn(*problem);
    PhenomenaRequest request;
    request.kind = static_cast<PhenomenonKind>(c.kind);
    request.jdUTStart = c.jdUTStart;
    request.durationDays = c.durationDays;
    request.stepHours = c.intervalHours;
    const int count = PhenomenonBodyCount(request.kind);
    std::vector<PhenomenonBody> lists[2];
    for (int i = 0; i < count; ++i) {
        std::string message;
        lists[i] = ResolveAll(i == 0 ? c.first : c.second, message);
        if (lists[i].empty()) return warn(message);
    }
    const std::vector<PhenomenaRequest> requests = PhenomenaPairs(request, lists[0], lists[1]);
    if (requests.empty()) return warn("Please select two different bodies.");

    // The search runs on a worker thread with its own copy of the site;
    // this thread keeps the window alive and passes Cancel on.
    std::atomic<double> fraction{0.0};
    std::atomic<bool> cancel{false};
    std::atomic<bool> done{false};
    PhenomenaBatchOutcome outcome;
    m_running = true;
    m_cancelRequested = false;
    const ProgressFn progress = m_panel->BeginProgress(tr("Searching..."));
    std::thread worker([&, site = m_site, requests] {
        outcome = SearchPhenomenaSections(site, requests, [&](double f) {
            fraction = f;
            return !cancel.load();
        });
        done = true;
    });
    while (!done.load()) {
        if (progress(fraction.load()) == ProgressAnswer::Cancel || m_cancelRequested) cancel = true;
        QThread::msleep(10);
    }
    worker.join();
    m_panel->EndProgress();
    m_running = false;
    if (outcome.status == PhenomenaStatus::Cancelled) {
        m_message->setText(tr("Cancelled."));
        return false;
    }
    if (outcome.status != PhenomenaStatus::Ok) return warn(PhenomenaStatusMessage(outcome.status));
    m_panel->SetTable(outcome.sections.empty() ? MakePhenomenaTable(requests.front(), {})
                                               : MakePhenomenaTable(outcome.sections));
    if (outcome.eventCount == 0) {
        m_message->setText(tr("No events were found in the specified time period."));
        QMessageBox::information(this, QApplication::applicationName(),
                                 tr("No events were found in the specified time period."));
        return false;
    }
    m_message->setText(tr("%1 events").arg(outcome.eventCount));
    return true;
}

void CPhenomenaDialog::reject()
{
    // Closing during a search cancels it first; the window closes after.
    if (m_running) {
        m_cancelRequested = true;
        return;
    }
    QDialog::reject();
}

void ShowPhenomena(QWidget* parent, CMapWindow& window, CAppContext& app)
{
    auto* dialog = new CPhenomenaDialog(window.Doc().observer, app, parent);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->show();
}

}  // namespace orv
