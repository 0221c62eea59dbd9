#include "app/minorwindows.h"

#include <QApplication>
#include <QColor>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProgressDialog>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QTableView>
#include <QVBoxLayout>

#include <cmath>

#include "app/appcontext.h"
#include "app/dialogs.h"
#include "app/mapwindow.h"
#include "app/resulttablepanel.h"
#include "solarsystem/drawminor.h"
#include "map/mapdoc.h"
#include "map/mapview.h"
#include "observer/observer.h"
#include "util/datapath.h"
#include "util/mappedfile.h"
#include "util/settingsstore.h"

namespace orv {

namespace {

const char* KindWord(MinorKind kind) { return kind == MinorKind::Asteroid ? "asteroid" : "comet"; }
QString Q(const std::string& s) { return QString::fromStdString(s); }

// The program's file-dialog filter "Catalogs (*.cat)|*.cat|All files (*.*)|*.*||" in Qt's form.
const QString kCatalogFilter = QStringLiteral("Catalogs (*.cat);;All files (*.*)");

QString Report(const CatalogReadResult& r, int replaced, const QString& what)
{
    QString text = QStringLiteral("%1: %2 lines accepted (%3 replaced, %4 added), %5 refused.")
                       .arg(what)
                       .arg(r.accepted)
                       .arg(replaced)
                       .arg(r.accepted - replaced)
                       .arg(r.refused.size());
    if (r.cancelled) text += QStringLiteral("\nThe import was cancelled; the lines read before are kept.");
    const std::size_t shown = std::min<std::size_t>(r.refused.size(), 50);
    for (std::size_t i = 0; i < shown; ++i)
        text += QStringLiteral("\nLine %1: %2").arg(r.refused[i].lineNumber).arg(Q(r.refused[i].reason));
    if (r.refused.size() > shown) text += QStringLiteral("\n… and %1 more.").arg(r.refused.size() - shown);
    return text;
}

QLineEdit* Field(QFormLayout* form, const QString& label, const QString& value, QWidget* parent)
{
    auto* edit = new QLineEdit(value, parent);
    form->addRow(label, edit);
    return edit;
}

bool Number(const QLineEdit* e, double& out)
{
    bool ok = false;
    out = e->text().trimmed().toDouble(&ok);
    return ok && std::isfinite(out);
}

}  // namespace

// ------------------------------------------------------------------ model

CMinorCatalogModel::CMinorCatalogModel(CMinorCatalogs& catalogs, MinorKind kind, QObject* parent)
    : QAbstractTableModel(parent), m_catalogs(catalogs), m_kind(kind)
{
    Refresh();
}

int CMinorCatalogModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_shown.size());
}

int CMinorCatalogModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : 8; }

QVariant CMinorCatalogModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    static const char* asteroid[] = {"Shown", "Number", "Name", "Epoch", "a (AU)", "e", "i (°)", "H"};
    static const char* comet[] = {"Shown", "Name", "Perihelion", "q (AU)", "e", "i (°)", "g", "k"};
    return QString::fromUtf8((m_kind == MinorKind::Asteroid ? asteroid : comet)[section]);
}

QVariant CMinorCatalogModel::data(const QModelIndex& index, int role) const
{
    if (index.row() < 0 || index.row() >= static_cast<int>(m_shown.size())) return {};
    const std::size_t i = m_shown[static_cast<std::size_t>(index.row())];
    // Entries the load filter leaves out are listed (they are saved with the
    // file) but greyed: the charts and find do not see them.
    if (role == Qt::ForegroundRole && !m_catalogs.IsLoaded(m_kind, i)) return QColor(Qt::gray);
    if (role == Qt::ToolTipRole && !m_catalogs.IsLoaded(m_kind, i))
        return tr("Not loaded: the load filter leaves it out (it stays in the file)");
    if (role != Qt::DisplayRole) return {};
    if (m_kind == MinorKind::Asteroid) {
        const AsteroidElements& a = m_catalogs.Asteroids()[i];
        switch (index.column()) {
        case 0: return a.flag == 'A' ? QStringLiteral("A") : QString();
        case 1: return a.number > 0 ? QVariant(a.number) : QVariant();
        case 2: return Q(a.name);
        case 3: return QString::asprintf("%d-%02d-%05.2f", a.epochYear, a.epochMonth, a.epochDay);
        case 4: return QString::number(a.aAU, 'f', 5);
        case 5: return QString::number(a.e, 'f', 5);
        case 6: return QString::number(a.inclinationDeg, 'f', 3);
        case 7: return QString::number(a.absoluteH, 'f', 2);
        default: return {};
        }
    }
    const CometElements& c = m_catalogs.Comets()[i];
    switch (index.column()) {
    case 0: return c.flag == 'A' ? QStringLiteral("A") : QString();
    case 1: return Q(c.name);
    case 2: return QString::asprintf("%d-%02d-%07.4f", c.perihelionYear, c.perihelionMonth, c.perihelionDay);
    case 3: return QString::number(c.qAU, 'f', 5);
    case 4: return QString::number(c.e, 'f', 6);
    case 5: return QString::number(c.inclinationDeg, 'f', 3);
    case 6: return QString::number(c.absoluteG, 'f', 1);
    case 7: return QString::number(c.slopeK, 'f', 1);
    default: return {};
    }
}

void CMinorCatalogModel::SetFilter(const QString& text)
{
    m_filter = text.trimmed();
    Refresh();
}

void CMinorCatalogModel::Refresh()
{
    beginResetModel();
    m_shown.clear();
    const std::size_t n = m_kind == MinorKind::Asteroid ? m_catalogs.Asteroids().size() : m_catalogs.Comets().size();
    bool isNumber = false;
    const int number = m_filter.toInt(&isNumber);
    const std::string needle = m_filter.toLower().toStdString();
    for (std::size_t i = 0; i < n; ++i) {
        if (m_filter.isEmpty()) {
            m_shown.push_back(i);
            continue;
        }
        std::string name = m_kind == MinorKind::Asteroid ? m_catalogs.Asteroids()[i].name : m_catalogs.Comets()[i].name;
        for (char& ch : name) ch = static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));
        const bool byNumber = isNumber && m_kind == MinorKind::Asteroid && m_catalogs.Asteroids()[i].number == number;
        if (byNumber || name.find(needle) != std::string::npos) m_shown.push_back(i);
    }
    endResetModel();
}

int CMinorCatalogModel::EntryAt(int row) const
{
    return row >= 0 && row < static_cast<int>(m_shown.size()) ? static_cast<int>(m_shown[static_cast<std::size_t>(row)])
                                                               : -1;
}

// -------------------------------------------------------- element editors

CAsteroidElementsDialog::CAsteroidElementsDialog(const AsteroidElements& a, QWidget* parent) : QDialog(parent)
{
    setWindowTitle(tr("Asteroid Elements"));
    auto* form = new QFormLayout(this);
    m_fields = {Field(form, tr("Shown (A)"), a.flag == 'A' ? "A" : "", this),
                Field(form, tr("Number"), QString::number(a.number), this),
                Field(form, tr("Name"), Q(a.name), this),
                Field(form, tr("Epoch year"), QString::number(a.epochYear), this),
                Field(form, tr("Epoch month"), QString::number(a.epochMonth), this),
                Field(form, tr("Epoch day"), QString::number(a.epochDay, 'f', 5), this),
                Field(form, tr("Mean anomaly M (°)"), QString::number(a.meanAnomalyDeg, 'f', 6), this),
                Field(form, tr("Semi-major axis a (AU)"), QString::number(a.aAU, 'f', 7), this),
                Field(form, tr("Eccentricity e"), QString::number(a.e, 'f', 8), this),
                Field(form, tr("Argument of perihelion ω (°)"), QString::number(a.argPerihelionDeg, 'f', 6), this),
                Field(form, tr("Ascending node Ω (°)"), QString::number(a.nodeDeg, 'f', 6), this),
                Field(form, tr("Inclination i (°)"), QString::number(a.inclinationDeg, 'f', 6), this),
                Field(form, tr("Absolute magnitude H"), QString::number(a.absoluteH, 'f', 2), this),
                Field(form, tr("Slope parameter G"), QString::number(a.slopeG, 'f', 2), this)};
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] {
        AsteroidElements check;
        QString error;
        if (Read(check, error)) accept();
        else QMessageBox::warning(this, windowTitle(), error);
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    form->addRow(buttons);
}

bool CAsteroidElementsDialog::Read(AsteroidElements& out, QString& error) const
{
    // The fields are written into a catalogue line and read back, so the
    // editor accepts exactly what the catalogue can hold.
    double v[11];
    static const char* names[] = {"epoch year", "epoch month", "epoch day", "mean anomaly", "semi-major axis",
                                  "eccentricity", "argument of perihelion", "node", "inclination", "H", "G"};
    for (int i = 0; i < 11; ++i)
        if (!Number(m_fields[static_cast<std::size_t>(i + 3)], v[i])) {
            error = tr("The %1 is not a number.").arg(names[i]);
            return false;
        }
    bool ok = false;
    const int number = m_fields[1]->text().trimmed().toInt(&ok);
    if (!ok || number < 0) {
        error = tr("The number is not a whole number (0 for an unnumbered asteroid).");
        return false;
    }
    AsteroidElements a;
    a.flag = m_fields[0]->text().trimmed() == "A" ? 'A' : ' ';
    a.number = number;
    a.name = m_fields[2]->text().trimmed().left(kMinorNameChars).toStdString();
    if (a.name.empty()) {
        error = tr("The name is empty.");
        return false;
    }
    a.epochYear = static_cast<std::int16_t>(v[0]);
    a.epochMonth = static_cast<std::int16_t>(v[1]);
    a.epochDay = v[2];
    a.meanAnomalyDeg = v[3];
    a.aAU = v[4];
    a.e = v[5];
    a.argPerihelionDeg = v[6];
    a.nodeDeg = v[7];
    a.inclinationDeg = v[8];
    a.absoluteH = v[9];
    a.slopeG = v[10];
    std::string why;
    const std::string line = FormatAsteroidLine(a);
    if (!ParseAsteroidLine(line.substr(0, line.size() - 1), out, &why)) {
        error = Q(why);
        return false;
    }
    return true;
}

CCometElementsDialog::CCometElementsDialog(const CometElements& c, QWidget* parent) : QDialog(parent)
{
    setWindowTitle(tr("Comet Elements"));
    auto* form = new QFormLayout(this);
    m_fields = {Field(form, tr("Shown (A)"), c.flag == 'A' ? "A" : "", this),
                Field(form, tr("Name"), Q(c.name), this),
                Field(form, tr("Perihelion year"), QString::number(c.perihelionYear), this),
                Field(form, tr("Perihelion month"), QString::number(c.perihelionMonth), this),
                Field(form, tr("Perihelion day"), QString::number(c.perihelionDay, 'f', 5), this),
                Field(form, tr("Perihelion distance q (AU)"), QString::number(c.qAU, 'f', 7), this),
                Field(form, tr("Eccentricity e"), QString::number(c.e, 'f', 7), this),
                Field(form, tr("Argument of perihelion ω (°)"), QString::number(c.argPerihelionDeg, 'f', 4), this),
                Field(form, tr("Ascending node Ω (°)"), QString::number(c.nodeDeg, 'f', 4), this),
                Field(form, tr("Inclination i (°)"), QString::number(c.inclinationDeg, 'f', 4), this),
                Field(form, tr("Absolute magnitude g"), QString::number(c.absoluteG, 'f', 1), this),
                Field(form, tr("Slope k"), QString::number(c.slopeK, 'f', 1), this)};
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] {
        CometElements check;
        QString error;
        if (Read(check, error)) accept();
        else QMessageBox::warning(this, windowTitle(), error);
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    form->addRow(buttons);
}

bool CCometElementsDialog::Read(CometElements& out, QString& error) const
{
    double v[10];
    static const char* names[] = {"perihelion year", "perihelion month", "perihelion day", "perihelion distance",
                                  "eccentricity", "argument of perihelion", "node", "inclination", "g", "k"};
    for (int i = 0; i < 10; ++i)
        if (!Number(m_fields[static_cast<std::size_t>(i + 2)], v[i])) {
            error = tr("The %1 is not a number.").arg(names[i]);
            return false;
        }
    CometElements c;
    c.flag = m_fields[0]->text().trimmed() == "A" ? 'A' : ' ';
    c.name = m_fields[1]->text().trimmed().left(kMinorNameChars).toStdString();
    if (c.name.size() < 2) {
        error = tr("The name needs at least two characters.");
        return false;
    }
    c.perihelionYear = static_cast<std::int16_t>(v[0]);
    c.perihelionMonth = static_cast<std::int16_t>(v[1]);
    c.perihelionDay = v[2];
    c.qAU = v[3];
    c.e = v[4];
    c.argPerihelionDeg = v[5];
    c.nodeDeg = v[6];
    c.inclinationDeg = v[7];
    c.absoluteG = v[8];
    c.slopeK = v[9];
    std::string why;
    if (!ParseCometLine(FormatCometLine(c), out, &why)) {
        error = Q(why);
        return false;
    }
    return true;
}

// -------------------------------------------------------- catalogue dialog

CMinorCatalogDialog::CMinorCatalogDialog(CAppContext& app, MinorKind kind, QWidget* parent)
    : QDialog(parent), m_app(app), m_kind(kind)
{
    CMinorCatalogs& catalogs = m_app.MinorCatalogs().Get();
    auto* layout = new QVBoxLayout(this);
    auto* searchRow = new QHBoxLayout;
    searchRow->addWidget(new QLabel(kind == MinorKind::Asteroid ? tr("Find name or number:") : tr("Find name:"), this));
    m_search = new QLineEdit(this);
    searchRow->addWidget(m_search);
    layout->addLayout(searchRow);
    m_model = new CMinorCatalogModel(catalogs, kind, this);
    m_view = new QTableView(this);
    m_view->setModel(m_model);
    m_view->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_view->setSelectionMode(QAbstractItemView::SingleSelection);
    m_view->verticalHeader()->hide();
    m_view->horizontalHeader()->setStretchLastSection(true);
    layout->addWidget(m_view);
    m_count = new QLabel(this);
    layout->addWidget(m_count);
    auto* buttons = new QHBoxLayout;
    auto button = [&](const QString& text, void (CMinorCatalogDialog::*fn)()) {
        auto* b = new QPushButton(text, this);
        connect(b, &QPushButton::clicked, this, fn);
        buttons->addWidget(b);
    };
    button(tr("&Add..."), &CMinorCatalogDialog::AddEntry);
    button(tr("&Edit..."), &CMinorCatalogDialog::EditEntry);
    button(tr("&Delete"), &CMinorCatalogDialog::DeleteEntry);
    button(tr("&Open..."), &CMinorCatalogDialog::OpenCatalog);
    auto* save = new QPushButton(tr("&Save"), this);
    connect(save, &QPushButton::clicked, this, [this] { SaveCatalog(); });
    buttons->addWidget(save);
    button(tr("Save &As..."), &CMinorCatalogDialog::SaveCatalogAs);
    button(tr("&Path..."), &CMinorCatalogDialog::ShowPath);
    button(tr("&Clear Paths"), &CMinorCatalogDialog::ClearPaths);
    auto* close = new QPushButton(tr("Close"), this);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    buttons->addWidget(close);
    layout->addLayout(buttons);
    connect(m_search, &QLineEdit::textChanged, this, [this](const QString& t) {
        m_model->SetFilter(t);
        UpdateTitle();
    });
    connect(m_view, &QTableView::doubleClicked, this, [this] { EditEntry(); });
    UpdateTitle();
    resize(820, 560);
}

void CMinorCatalogDialog::UpdateTitle()
{
    CMinorCatalogs& c = m_app.MinorCatalogs().Get();
    const bool asteroid = m_kind == MinorKind::Asteroid;
    const QString path = Q(asteroid ? c.AsteroidPath() : c.CometPath());
    setWindowTitle((asteroid ? tr("Asteroid Catalog - %1") : tr("Comet Catalog - %1")).arg(path) +
                   (c.Changed(m_kind) ? QStringLiteral(" *") : QString()));
    const std::size_t total = asteroid ? c.Asteroids().size() : c.Comets().size();
    const std::size_t loaded = asteroid ? c.LoadedAsteroids().size() : c.LoadedComets().size();
    // The window edits the whole file; the charts and find see the loaded part.
    QString count = tr("%1 of %2 entries shown; %3 loaded by the load filter (%4), the others kept in the file")
                        .arg(m_model->rowCount())
                        .arg(total)
                        .arg(loaded)
                        .arg(Q(asteroid ? DescribeFilter(c.AsteroidLoadFilter()) : DescribeFilter(c.CometLoadFilter())));
    const CatalogOtherLines& others = c.OtherLines(m_kind);
    if (!others.Empty())
        count += tr("; %1 comment or unreadable lines%2 kept as they are")
                     .arg(others.lines.size())
                     .arg(others.tail.empty() ? QString() : tr(" and the lines after the end-of-list line"));
    m_count->setText(count);
}

int CMinorCatalogDialog::SelectedEntry() const
{
    const QModelIndexList rows = m_view->selectionModel()->selectedRows();
    return rows.isEmpty() ? -1 : m_model->EntryAt(rows.front().row());
}

void CMinorCatalogDialog::Changed()
{
    m_app.MinorCatalogs().Get().MarkChanged(m_kind);
    m_model->Refresh();
    UpdateTitle();
    m_app.NotifyCatalogsChanged();
}

void CMinorCatalogDialog::AddEntry()
{
    CMinorCatalogs& c = m_app.MinorCatalogs().Get();
    if (m_kind == MinorKind::Asteroid) {
        AsteroidElements a;
        a.name = "New Asteroid";
        a.flag = 'A';
        a.aAU = 2.5;
        CAsteroidElementsDialog dialog(a, this);
        QString error;
        if (dialog.exec() != QDialog::Accepted || !dialog.Read(a, error)) return;
        c.Asteroids().push_back(a);
    } else {
        CometElements cm;
        cm.name = "New Comet";
        cm.flag = 'A';
        CCometElementsDialog dialog(cm, this);
        QString error;
        if (dialog.exec() != QDialog::Accepted || !dialog.Read(cm, error)) return;
        c.Comets().push_back(cm);
    }
    Changed();
}

void CMinorCatalogDialog::EditEntry()
{
    const int i = SelectedEntry();
    if (i < 0) return;
    CMinorCatalogs& c = m_app.MinorCatalogs().Get();
    QString error;
    if (m_kind == MinorKind::Asteroid) {
        CAsteroidElementsDialog dialog(c.Asteroids()[static_cast<std::size_t>(i)], this);
        AsteroidElements a;
        if (dialog.exec() != QDialog::Accepted || !dialog.Read(a, error)) return;
        c.Asteroids()[static_cast<std::size_t>(i)] = a;
    } else {
        CCometElementsDialog dialog(c.Comets()[static_cast<std::size_t>(i)], this);
        CometElements cm;
        if (dialog.exec() != QDialog::Accepted || !dialog.Read(cm, error)) return;
        c.Comets()[static_cast<std::size_t>(i)] = cm;
    }
    Changed();
}

void CMinorCatalogDialog::DeleteEntry()
{
    const int i = SelectedEntry();
    if (i < 0) return;
    CMinorCatalogs& c = m_app.MinorCatalogs().Get();
    const std::string name = m_kind == MinorKind::Asteroid ? c.Asteroids()[static_cast<std::size_t>(i)].name
                                                           : c.Comets()[static_cast<std::size_t>(i)].name;
    const QString question = QString::asprintf(m_kind == MinorKind::Asteroid ? "Delete asteroid \"%s\" from the catalog?"
                                                                              : "Delete comet \"%s\" from the catalog?",
                                                name.c_str());
    if (QMessageBox::question(this, windowTitle(), question) != QMessageBox::Yes) return;
    c.EraseEntry(m_kind, static_cast<std::size_t>(i));
    // Paths name entries by their place in the list: the deleted entry's
    // path goes, those after it move up.
    std::vector<MinorPathRequest> paths;
    for (MinorPathRequest p : c.OrbitPaths()) {
        if (p.kind == m_kind && p.index == static_cast<std::size_t>(i)) continue;
        if (p.kind == m_kind && p.index > static_cast<std::size_t>(i)) --p.index;
        paths.push_back(p);
    }
    c.SetOrbitPaths(std::move(paths));
    Changed();
}

bool CMinorCatalogDialog::MaybeSave(const QString& question)
{
    if (!m_app.MinorCatalogs().Get().Changed(m_kind)) return true;
    const auto answer =
        QMessageBox::question(this, windowTitle(), question, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
    if (answer == QMessageBox::Cancel) return false;
    if (answer == QMessageBox::Yes) return SaveCatalog();
    return true;
}

void CMinorCatalogDialog::OpenCatalog()
{
    const QString question = QString::asprintf(
        "The current %s catalog has been changed.\nDo you want to save these changes before\nopening a different catalog?",
        KindWord(m_kind));
    if (!MaybeSave(question)) return;
    const QString path = QFileDialog::getOpenFileName(this, tr("Open Catalog"), m_app.RememberedFolder("MinorCatalogs"),
                                                      kCatalogFilter);
    if (path.isEmpty()) return;
    m_app.RememberFolder("MinorCatalogs", path);
    CMinorCatalogs& c = m_app.MinorCatalogs().Get();
    const bool asteroid = m_kind == MinorKind::Asteroid;
    c.SetPaths(asteroid ? path.toStdString() : c.AsteroidPath(), asteroid ? c.CometPath() : path.toStdString());
    c.Reload();
    std::vector<MinorPathRequest> paths;
    for (const MinorPathRequest& p : c.OrbitPaths())
        if (p.kind != m_kind) paths.push_back(p);
    c.SetOrbitPaths(std::move(paths));
    m_app.Settings().WriteString("Paths", asteroid ? "AsteroidCat" : "CometCat", path.toStdString());
    m_model->Refresh();
    UpdateTitle();
    m_app.NotifyCatalogsChanged();
}

bool CMinorCatalogDialog::SaveCatalog()
{
    if (const auto error = m_app.MinorCatalogs().Get().Save(m_kind)) {
        QMessageBox::warning(this, windowTitle(), Q(*error));
        return false;
    }
    UpdateTitle();
    return true;
}

void CMinorCatalogDialog::SaveCatalogAs()
{
    const QString path = QFileDialog::getSaveFileName(this, tr("Save Catalog As"),
                                                      m_app.RememberedFolder("MinorCatalogs"), kCatalogFilter);
    if (path.isEmpty()) return;
    m_app.RememberFolder("MinorCatalogs", path);
    if (const auto error = m_app.MinorCatalogs().Get().Save(m_kind, path.toStdString())) {
        QMessageBox::warning(this, windowTitle(), Q(*error));
        return;
    }
    m_app.Settings().WriteString("Paths", m_kind == MinorKind::Asteroid ? "AsteroidCat" : "CometCat",
                                 path.toStdString());
    UpdateTitle();
}

void CMinorCatalogDialog::ShowPath()
{
    const int i = SelectedEntry();
    if (i < 0) return;
    bool ok = false;
    const QString centredOn = m_pathCentreJdTT ? tr("Days, centred on the map's date:") : tr("Days, centred on now:");
    const double days = QInputDialog::getDouble(this, tr("Orbit Path"), centredOn, 60.0, 1.0, 3650.0, 0, &ok);
    if (!ok) return;
    const double step = QInputDialog::getDouble(this, tr("Orbit Path"), tr("Days between ticks:"), days <= 90.0 ? 1.0 : 10.0,
                                                0.01, 365.0, 2, &ok);
    if (!ok) return;
    double centreJdTT = 0.0;
    if (m_pathCentreJdTT) {
        centreJdTT = *m_pathCentreJdTT;
    } else {
        CObserverDoc now;
        now.SetToNow();
        centreJdTT = now.JulianDateTDT();
    }
    MinorPathRequest path;
    path.kind = m_kind;
    path.index = static_cast<std::size_t>(i);
    path.startJdTT = centreJdTT - 0.5 * days;
    path.endJdTT = centreJdTT + 0.5 * days;
    path.stepDays = step;
    path.labelEvery = 5;
    CMinorCatalogs& c = m_app.MinorCatalogs().Get();
    std::vector<MinorPathRequest> paths = c.OrbitPaths();
    paths.push_back(path);
    c.SetOrbitPaths(std::move(paths));
    m_app.NotifyCatalogsChanged();
}

void CMinorCatalogDialog::ClearPaths()
{
    m_app.MinorCatalogs().Get().SetOrbitPaths({});
    m_app.NotifyCatalogsChanged();
}

void CMinorCatalogDialog::done(int result)
{
    const QString question = QString::asprintf(
        "The current %s catalog has been changed.\nDo you want to save these changes?", KindWord(m_kind));
    if (!MaybeSave(question)) return;
    QDialog::done(result);
}

// ------------------------------------------------------------ settings

CMinorSettingsDialog::CMinorSettingsDialog(const CAsteroidCatalogSettings& a, const CCometCatalogSettings& c,
                                           const CBodyDisplay& ad, const CBodyDisplay& cd, QWidget* parent,
                                           CSettingsStore* defaults)
    : QDialog(parent), asteroids(a), comets(c), asteroidDisplay(ad), cometDisplay(cd)
{
    setWindowTitle(tr("Comets and Asteroids"));
    auto* layout = new QVBoxLayout(this);
    auto* tabs = new QTabWidget(this);

    // CAsterPageCatalog: which entries of the catalogues a map loads.
    auto* catalog = new QWidget(tabs);
    auto* form = new QFormLayout(catalog);
    auto* aMode = new QComboBox(catalog);
    aMode->addItems({tr("Entries marked A"), tr("In file order up to a number"), tr("Absolute magnitude H within limits")});
    aMode->setCurrentIndex(std::clamp(asteroids.filterMode, 0, 2));
    auto* aNumber = new QSpinBox(catalog);
    aNumber->setRange(1, 2000000);
    aNumber->setValue(asteroids.filterNumber);
    auto* hMin = new QDoubleSpinBox(catalog);
    auto* hMax = new QDoubleSpinBox(catalog);
    for (QDoubleSpinBox* s : {hMin, hMax}) {
        s->setRange(-10.0, 50.0);
        s->setDecimals(1);
    }
    hMin->setValue(asteroids.filterHMin);
    hMax->setValue(asteroids.filterHMax);
    form->addRow(tr("Asteroids loaded:"), aMode);
    form->addRow(tr("Up to number:"), aNumber);
    form->addRow(tr("H from:"), hMin);
    form->addRow(tr("H to:"), hMax);
    auto* cMode = new QComboBox(catalog);
    cMode->addItems({tr("Entries marked A"), tr("Perihelion within days of the map's date"), tr("None")});
    cMode->setCurrentIndex(std::clamp(comets.filterMode, 0, 2));
    auto* cDays = new QDoubleSpinBox(catalog);
    cDays->setRange(1.0, 1e6);
    cDays->setDecimals(0);
    cDays->setValue(comets.filterDays);
    form->addRow(tr("Comets loaded:"), cMode);
    form->addRow(tr("Days from perihelion:"), cDays);
    tabs->addTab(catalog, tr("Catalog"));

    // CAsterPageDisplay: levels, labels and magnitude limits.
    auto* display = new QWidget(tabs);
    auto* grid = new QFormLayout(display);
    struct Controls {
        QCheckBox* visible;
        QSpinBox *low, *high, *labelLow, *labelHigh;
        QDoubleSpinBox* magLimit;
        QCheckBox* labelMag;
    };
    auto makeControls = [&](CBodyDisplay& d, const QString& what) {
        Controls k;
        k.visible = new QCheckBox(tr("Show %1").arg(what), display);
        k.visible->setChecked(d.visible != 0);
        grid->addRow(k.visible);
        auto spin = [&](int value) {
            auto* s = new QSpinBox(display);
            s->setRange(0, 10);
            s->setSpecialValueText(tr("never"));
            s->setValue(value < 0 ? 0 : value + 1);
            return s;
        };
        k.low = spin(d.levels.low);
        k.high = spin(d.levels.high);
        k.labelLow = spin(d.labelLevels.low);
        k.labelHigh = spin(d.labelLevels.high);
        auto* levels = new QHBoxLayout;
        levels->addWidget(k.low);
        levels->addWidget(new QLabel(tr("to"), display));
        levels->addWidget(k.high);
        grid->addRow(tr("%1 at levels:").arg(what), levels);
        auto* labels = new QHBoxLayout;
        labels->addWidget(k.labelLow);
        labels->addWidget(new QLabel(tr("to"), display));
        labels->addWidget(k.labelHigh);
        grid->addRow(tr("Labels at levels:"), labels);
        k.magLimit = new QDoubleSpinBox(display);
        k.magLimit->setRange(-5.0, 30.0);
        k.magLimit->setDecimals(1);
        k.magLimit->setValue(d.magLimit * 0.01);
        grid->addRow(tr("Faintest magnitude:"), k.magLimit);
        k.labelMag = new QCheckBox(tr("Magnitude in the labels"), display);
        k.labelMag->setChecked(d.labelMag != 0);
        grid->addRow(k.labelMag);
        return k;
    };
    const Controls ak = makeControls(asteroidDisplay, tr("Asteroids"));
    const Controls ck = makeControls(cometDisplay, tr("Comets"));
    tabs->addTab(display, tr("Display"));
    layout->addWidget(tabs);

    auto apply = [=, this] {
        asteroids.filterMode = aMode->currentIndex();
        asteroids.filterNumber = aNumber->value();
        asteroids.filterHMin = hMin->value();
        asteroids.filterHMax = hMax->value();
        comets.filterMode = cMode->currentIndex();
        comets.filterDays = cDays->value();
        auto store = [](const Controls& k, CBodyDisplay& d) {
            d.visible = k.visible->isChecked() ? 1 : 0;
            auto level = [](QSpinBox* s) { return s->value() == 0 ? -1 : s->value() - 1; };
            d.levels = {level(k.low), level(k.high)};
            d.labelLevels = {level(k.labelLow), level(k.labelHigh)};
            d.magLimit = static_cast<int>(std::lround(k.magLimit->value() * 100.0));
            d.labelMag = k.labelMag->isChecked() ? 1 : 0;
        };
        store(ak, asteroidDisplay);
        store(ck, cometDisplay);
    };
    // OK keeps the pages for this map; "Save as Defaults" also makes them
    // what new maps start with (the sections "Asteroid", "Comet" and the
    // catalogue filters' keys).
    QDialogButtonBox* buttons = nullptr;
    if (defaults != nullptr) {
        buttons = OkCancelSaveDefaults(this, [this, apply, defaults] {
            apply();
            asteroids.Save(*defaults);
            comets.Save(*defaults);
            asteroidDisplay.Save(*defaults);
            cometDisplay.Save(*defaults);
            defaults->Flush();
        });
    } else {
        buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
        connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    }
    disconnect(buttons, &QDialogButtonBox::accepted, nullptr, nullptr);
    connect(buttons, &QDialogButtonBox::accepted, this, [this, apply] {
        apply();
        accept();
    });
    layout->addWidget(buttons);
}

// -------------------------------------------------------------- commands

CMinorCommands::CMinorCommands(CAppContext& app, QWidget* frame, std::function<CMapWindow*()> activeMap)
    : QObject(frame), m_app(app), m_frame(frame), m_activeMap(std::move(activeMap))
{
    m_menu = new QMenu(tr("&Comets && Asteroids"), frame);
    m_menu->addAction(tr("&Asteroid Catalog..."), this, [this] { ShowCatalog(MinorKind::Asteroid); });
    m_menu->addAction(tr("&Comet Catalog..."), this, [this] { ShowCatalog(MinorKind::Comet); });
    m_menu->addSeparator();
    m_menu->addAction(tr("&Import MPC Elements..."), this, &CMinorCommands::Import);
    m_menu->addAction(tr("&Paste Element Lines..."), this, &CMinorCommands::PasteLines);
    m_menu->addSeparator();
    m_menu->addAction(tr("Comet and Asteroid &Options..."), this, &CMinorCommands::Options);
    m_menu->addAction(tr("Comets and Asteroids &Visible on the Map..."), this, &CMinorCommands::VisibleList);
}

void CMinorCommands::ShowCatalog(MinorKind kind)
{
    CMinorCatalogDialog dialog(m_app, kind, m_frame);
    // Paths drawn from the dialog span the date of the map they are seen on.
    if (CMapWindow* w = m_activeMap()) dialog.SetPathCentre(w->Doc().observer.JulianDateTDT());
    dialog.exec();
}

QString CMinorCommands::ImportFile(const QString& path, bool showProgress)
{
    CMappedFile file;
    if (!file.Open(path.toStdString())) return tr("Cannot open \"%1\".").arg(path);
    const std::string_view text(reinterpret_cast<const char*>(file.Data()), file.Size());
    const ElementFileKind kind = DetectElementFile(text);
    if (kind == ElementFileKind::Unknown)
        return tr("\"%1\" holds no element lines of the MPCORB, MPC comet, asteroid catalog or comet catalog formats.")
            .arg(path);
    std::unique_ptr<QProgressDialog> progress;
    if (showProgress) {
        progress = std::make_unique<QProgressDialog>(tr("Importing %1...").arg(path), tr("Cancel"), 0, 1000, m_frame);
        progress->setWindowModality(Qt::WindowModal);
        progress->setMinimumDuration(300);
    }
    const ProgressFn report = [&](double fraction) {
        if (!progress) return ProgressAnswer::Continue;
        progress->setValue(static_cast<int>(fraction * 1000.0));
        QApplication::processEvents();
        return progress->wasCanceled() ? ProgressAnswer::Cancel : ProgressAnswer::Continue;
    };
    CMinorCatalogs& c = m_app.MinorCatalogs().Get();
    // The import goes through the load filter in force: the active map's
    // catalogue settings (Comet and Asteroid Options).
    if (CMapWindow* w = m_activeMap()) ApplyLoadFilters(c, w->Doc());
    const bool asteroids = kind == ElementFileKind::Mpcorb || kind == ElementFileKind::AsteroidCatalog;
    CatalogReadResult r;
    int replaced = 0;
    if (asteroids) {
        std::vector<AsteroidElements> incoming;
        r = kind == ElementFileKind::Mpcorb ? ImportMpcorb(text, c.AsteroidLoadFilter(), incoming, report)
                                            : ParseAsteroidCatalog(text, c.AsteroidLoadFilter(), incoming);
        replaced = MergeAsteroids(c.Asteroids(), incoming);
    } else {
        std::vector<CometElements> incoming;
        r = kind == ElementFileKind::MpcComets ? ImportMpcComets(text, c.CometLoadFilter(), incoming, report)
                                               : ParseCometCatalog(text, c.CometLoadFilter(), incoming);
        replaced = MergeComets(c.Comets(), incoming);
    }
    if (progress) progress->setValue(1000);
    const MinorKind target = asteroids ? MinorKind::Asteroid : MinorKind::Comet;
    if (r.accepted > 0) {
        c.MarkChanged(target);
        m_app.NotifyCatalogsChanged();
    }
    QString text2 = Report(r, replaced, path);
    const QString filterText =
        Q(asteroids ? DescribeFilter(c.AsteroidLoadFilter()) : DescribeFilter(c.CometLoadFilter()));
    if (r.filteredOut > 0)
        text2 += tr("\n%1 lines were left out by the load filter (%2); change it in Comet and Asteroid Options.")
                     .arg(r.filteredOut)
                     .arg(filterText);
    if (r.stoppedAtLine > 0)
        text2 += tr("\nReading stopped at line %1, the limit of the load filter (%2).").arg(r.stoppedAtLine).arg(filterText);
    if (r.accepted > 0)
        text2 += tr("\nThe %1 catalog has changed; save it from its catalog window.").arg(KindWord(target));
    return text2;
}

void CMinorCommands::Import()
{
    // The MPC's export where the program has always looked for it first.
    std::string located;
    const QString start = LocateDataFile("data\\mpcorb.dat", located) ? QString::fromStdString(located)
                                                                      : m_app.RememberedFolder("MinorImport");
    const QString path = QFileDialog::getOpenFileName(m_frame, tr("Import MPC Elements"), start,
                                                      tr("Element files (*.dat *.DAT *.txt *.cat);;All files (*.*)"));
    if (path.isEmpty()) return;
    m_app.RememberFolder("MinorImport", path);
    const QString report = ImportFile(path, true);
    QMessageBox box(QMessageBox::Information, tr("Import MPC Elements"), report.section('\n', 0, 0), QMessageBox::Ok,
                    m_frame);
    box.setDetailedText(report);
    box.exec();
}

QString CMinorCommands::AddPastedLines(const QString& text)
{
    CMinorCatalogs& c = m_app.MinorCatalogs().Get();
    std::vector<AsteroidElements> asteroids;
    std::vector<CometElements> comets;
    QStringList refused;
    const QStringList lines = text.split('\n');
    for (int i = 0; i < lines.size(); ++i) {
        const std::string line = lines[i].toStdString();
        if (lines[i].trimmed().isEmpty()) continue;
        std::string why;
        const std::optional<PastedElements> e = ParsePastedLine(line, &why);
        if (!e) {
            refused << tr("Line %1: %2").arg(i + 1).arg(Q(why));
            continue;
        }
        if (std::holds_alternative<AsteroidElements>(*e)) asteroids.push_back(std::get<AsteroidElements>(*e));
        else comets.push_back(std::get<CometElements>(*e));
    }
    for (AsteroidElements& a : asteroids) a.flag = 'A';  // pasted to be seen
    for (CometElements& cm : comets) cm.flag = 'A';
    if (!asteroids.empty()) {
        MergeAsteroids(c.Asteroids(), asteroids);
        c.MarkChanged(MinorKind::Asteroid);
    }
    if (!comets.empty()) {
        MergeComets(c.Comets(), comets);
        c.MarkChanged(MinorKind::Comet);
    }
    if (!asteroids.empty() || !comets.empty()) m_app.NotifyCatalogsChanged();
    QString report = tr("%1 asteroids and %2 comets added, %3 lines refused.")
                         .arg(asteroids.size())
                         .arg(comets.size())
                         .arg(refused.size());
    if (!refused.isEmpty()) report += "\n" + refused.join('\n');
    return report;
}

void CMinorCommands::PasteLines()
{
    QDialog dialog(m_frame);
    dialog.setWindowTitle(tr("Paste Element Lines"));
    auto* layout = new QVBoxLayout(&dialog);
    layout->addWidget(new QLabel(tr("Paste one or more element lines: MPCORB, the MPC's comet format, or catalog lines."),
                                 &dialog));
    auto* edit = new QPlainTextEdit(&dialog);
    edit->setLineWrapMode(QPlainTextEdit::NoWrap);
    QFont mono(QStringLiteral("monospace"));
    mono.setStyleHint(QFont::TypeWriter);
    edit->setFont(mono);
    layout->addWidget(edit);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dialog);
    connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    layout->addWidget(buttons);
    dialog.resize(900, 300);
    if (dialog.exec() != QDialog::Accepted) return;
    QMessageBox::information(m_frame, tr("Paste Element Lines"), AddPastedLines(edit->toPlainText()));
}

void CMinorCommands::Options()
{
    CMapWindow* w = m_activeMap();
    if (w == nullptr) return;
    CMinorSettingsDialog dialog(w->Doc().asteroids, w->Doc().comets, w->View().asteroids, w->View().comets, m_frame,
                                &m_app.Settings());
    if (dialog.exec() != QDialog::Accepted) return;
    w->Doc().asteroids = dialog.asteroids;
    w->Doc().comets = dialog.comets;
    // The catalogues load through the new filters now, so that find and the
    // catalogue window agree with the chart before it is redrawn.
    ApplyLoadFilters(m_app.MinorCatalogs().Get(), w->Doc());
    m_app.NotifyCatalogsChanged();
    w->View().asteroids = dialog.asteroidDisplay;
    w->View().comets = dialog.cometDisplay;
    w->View().SetLevel(w->View().Level(), CMapView::TakeField::No);
    w->MapChanged();
}

void CMinorCommands::VisibleList()
{
    CMapWindow* w = m_activeMap();
    if (w == nullptr) return;
    auto* dialog = new QDialog(m_frame);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(tr("Comets and Asteroids Visible on the Map"));
    auto* layout = new QVBoxLayout(dialog);
    auto* panel = new CResultTablePanel(m_app, CResultTablePanel::Sorting::ByColumn, CResultTablePanel::Selection::Single,
                                        CResultTablePanel::Title::Hidden, dialog);
    panel->SetReportName(QStringLiteral("MinorBodies"));
    const std::vector<VisibleMinorRow> rows = VisibleMinorRows(w->Renderer().WindowScene(), m_app.Components().objects);
    panel->SetTable(VisibleMinorTable(rows));
    layout->addWidget(panel);
    layout->addWidget(new QLabel(tr("%1 objects").arg(rows.size()), dialog));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, dialog);
    connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    layout->addWidget(buttons);
    QPointer<CMapWindow> window(w);
    connect(panel, &CResultTablePanel::RowActivated, dialog, [rows, window](int row) {
        if (!window || row < 0 || row >= static_cast<int>(rows.size())) return;
        const VisibleMinorRow& r = rows[static_cast<std::size_t>(row)];
        window->CentreOn(r.state.raJ2000Rad, r.state.decJ2000Rad,
                         SearchTarget{r.state.raJ2000Rad, r.state.decJ2000Rad, r.designation});
    });
    dialog->resize(1000, 480);
    dialog->show();
}

}  // namespace orv
