#include "app/overlaydialog.h"

#include "app/dataproblemsbox.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QVBoxLayout>

#include "app/appcontext.h"
#include "util/datapath.h"

namespace orv {

QString OverlayProblems(const COverlay& overlay)
{
    QStringList lines;
    for (const OverlayDiagnostic& d : overlay.diagnostics) {
        lines << QStringLiteral("%1, line %2: %3%4")
                     .arg(QFileInfo(QString::fromStdString(overlay.path)).fileName())
                     .arg(d.line)
                     .arg(d.severity == OverlayDiagnostic::Severity::Error ? QString() : QObject::tr("(drawn) "))
                     .arg(QString::fromStdString(d.message));
        if (lines.size() == 20) {
            lines << QObject::tr("… and %1 more").arg(overlay.diagnostics.size() - 20);
            break;
        }
    }
    return lines.join('\n');
}

// ------------------------------------------------------------------ entry

COverlayEntryDialog::COverlayEntryDialog(const OverlayListEntry& entry, QWidget* parent) : QDialog(parent)
{
    setWindowTitle(tr("Map Overlay"));
    auto* layout = new QVBoxLayout(this);
    auto* fileRow = new QHBoxLayout;
    m_path = new QLineEdit(QString::fromStdString(entry.path), this);
    m_path->setMinimumWidth(360);
    auto* browse = new QPushButton(tr("&Browse..."), this);
    fileRow->addWidget(new QLabel(tr("Overlay file:"), this));
    fileRow->addWidget(m_path, 1);
    fileRow->addWidget(browse);
    layout->addLayout(fileRow);
    m_active = new QCheckBox(tr("&Active (drawn on every chart)"), this);
    m_active->setChecked(entry.active != 0);
    layout->addWidget(m_active);
    auto* note = new QLabel(tr("Range of levels between which this overlay should be activated. Enter both as 0 if "
                               "the overlay is never activated automatically:"),
                            this);
    note->setWordWrap(true);
    layout->addWidget(note);
    auto* form = new QFormLayout;
    m_min = new QSpinBox(this);
    m_max = new QSpinBox(this);
    for (QSpinBox* s : {m_min, m_max}) s->setRange(0, 10);
    m_min->setValue(entry.minLevel);
    m_max->setValue(entry.maxLevel);
    form->addRow(tr("Minimum activation level :"), m_min);
    form->addRow(tr("Maximum activation level :"), m_max);
    layout->addLayout(form);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    layout->addWidget(buttons);
    connect(browse, &QPushButton::clicked, this, &COverlayEntryDialog::Browse);
    connect(buttons, &QDialogButtonBox::accepted, this, &COverlayEntryDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void COverlayEntryDialog::Browse()
{
    const QString start = m_path->text().isEmpty() ? QString::fromStdString(GetDataPath()) : m_path->text();
    const QString path = QFileDialog::getOpenFileName(this, tr("Map Overlay"), start,
                                                      tr("Overlay Files (*.ovl *.txt);;All files (*)"));
    if (!path.isEmpty()) m_path->setText(path);
}

void COverlayEntryDialog::accept()
{
    const QString path = m_path->text().trimmed();
    if (path.isEmpty()) {
        QMessageBox::warning(this, windowTitle(), tr("Choose an overlay file."));
        return;
    }
    if ((m_min->value() == 0) != (m_max->value() == 0) || m_min->value() > m_max->value()) {
        QMessageBox::warning(this, windowTitle(),
                             tr("The activation levels run from 1 to 10, the minimum not above the maximum; "
                                "enter both as 0 for none."));
        return;
    }
    const COverlay parsed = ParseOverlayFile(path.toStdString());
    if (!parsed.opened) {
        QMessageBox::warning(this, windowTitle(), tr("Unable to open file\n\"%1\"").arg(path));
        return;
    }
    if (const QString problems = OverlayProblems(parsed); !problems.isEmpty())
        QMessageBox::information(this, windowTitle(),
                                 tr("These lines of the overlay are skipped or drawn with defaults; the rest is "
                                    "drawn:\n\n%1")
                                     .arg(problems));
    QDialog::accept();
}

OverlayListEntry COverlayEntryDialog::Result() const
{
    OverlayListEntry e;
    e.path = QFileInfo(m_path->text().trimmed()).absoluteFilePath().toStdString();
    e.active = m_active->isChecked() ? 1 : 0;
    e.minLevel = static_cast<std::int16_t>(m_min->value());
    e.maxLevel = static_cast<std::int16_t>(m_max->value());
    return e;
}

// ------------------------------------------------------------------- list

COverlayListDialog::COverlayListDialog(CAppContext& app, QWidget* parent)
    : QDialog(parent), m_app(app), m_entries(app.Overlays().entries)
{
    setWindowTitle(tr("Map Overlays"));
    auto* layout = new QHBoxLayout(this);
    m_table = new QTableWidget(this);
    m_table->setColumnCount(3);
    m_table->setHorizontalHeaderLabels({tr("Active"), tr("Levels"), tr("File")});
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->verticalHeader()->hide();
    m_table->setMinimumSize(560, 220);
    layout->addWidget(m_table, 1);
    auto* side = new QVBoxLayout;
    auto* add = new QPushButton(tr("&Add..."), this);
    auto* edit = new QPushButton(tr("&Edit..."), this);
    auto* remove = new QPushButton(tr("&Delete..."), this);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, Qt::Vertical, this);
    side->addWidget(add);
    side->addWidget(edit);
    side->addWidget(remove);
    side->addStretch(1);
    side->addWidget(buttons);
    layout->addLayout(side);
    connect(add, &QPushButton::clicked, this, &COverlayListDialog::Add);
    connect(edit, &QPushButton::clicked, this, &COverlayListDialog::Edit);
    connect(remove, &QPushButton::clicked, this, &COverlayListDialog::Delete);
    connect(m_table, &QTableWidget::cellDoubleClicked, this, &COverlayListDialog::Edit);
    connect(m_table, &QTableWidget::itemChanged, this, [this](QTableWidgetItem* item) {
        if (item->column() == 0 && item->row() < static_cast<int>(m_entries.size())) {
            m_entries[item->row()].active = item->checkState() == Qt::Checked ? 1 : 0;
            ReadIfDrawn(item->row());
        }
    });
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    Fill();
}

void COverlayListDialog::Fill()
{
    const QSignalBlocker block(m_table);
    m_table->setRowCount(static_cast<int>(m_entries.size()));
    for (int i = 0; i < static_cast<int>(m_entries.size()); ++i) {
        const OverlayListEntry& e = m_entries[i];
        auto* active = new QTableWidgetItem;
        active->setFlags(Qt::ItemIsUserCheckable | Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        active->setCheckState(e.active ? Qt::Checked : Qt::Unchecked);
        m_table->setItem(i, 0, active);
        m_table->setItem(i, 1, new QTableWidgetItem(e.HasLevelRange() ? QStringLiteral("%1-%2").arg(e.minLevel).arg(e.maxLevel)
                                                                      : tr("none")));
        m_table->setItem(i, 2, new QTableWidgetItem(QString::fromStdString(e.path)));
    }
    m_table->resizeColumnsToContents();
    m_table->horizontalHeader()->setStretchLastSection(true);
}

int COverlayListDialog::Current() const
{
    const int row = m_table->currentRow();
    return row >= 0 && row < static_cast<int>(m_entries.size()) ? row : -1;
}

void COverlayListDialog::Add()
{
    OverlayListEntry e;
    e.active = 1;
    COverlayEntryDialog dialog(e, this);
    if (dialog.exec() != QDialog::Accepted) return;
    m_entries.push_back(dialog.Result());
    Fill();
    ReadIfDrawn(static_cast<int>(m_entries.size()) - 1);
    m_table->selectRow(static_cast<int>(m_entries.size()) - 1);
}

void COverlayListDialog::Edit()
{
    const int i = Current();
    if (i < 0) return;
    COverlayEntryDialog dialog(m_entries[i], this);
    if (dialog.exec() != QDialog::Accepted) return;
    m_entries[i] = dialog.Result();
    Fill();
    ReadIfDrawn(i);
    m_table->selectRow(i);
}

// An overlay made active (or given levels) is read at once, so that a file
// cut short or of another kind is named while the user is choosing it.
void COverlayListDialog::ReadIfDrawn(int row)
{
    const OverlayListEntry& e = m_entries[static_cast<std::size_t>(row)];
    if (e.active == 0 && !e.HasLevelRange()) return;
    m_app.Overlays().Get(e.path);
    ShowDataFileProblems(this);
}

void COverlayListDialog::Delete()
{
    const int i = Current();
    if (i < 0) return;
    if (QMessageBox::question(this, windowTitle(),
                              tr("Remove \"%1\" from the list of overlays?\n(The file itself is kept.)")
                                  .arg(QString::fromStdString(m_entries[i].path))) != QMessageBox::Yes)
        return;
    m_entries.erase(m_entries.begin() + i);
    Fill();
}

}  // namespace orv
