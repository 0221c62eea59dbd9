#include "app/satellitewindows.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "app/appcontext.h"
#include "app/mapwindow.h"
#include "app/satellitesheets.h"
#include "map/mapdoc.h"
#include "observer/observer.h"
#include "satellite/describe.h"
#include "util/settingsstore.h"

namespace orv {

namespace {

QString ToQ(const std::string& s) { return QString::fromStdString(s); }

// Items of the list sort by the number of the Period column, not its text.
class CSatelliteItem : public QTreeWidgetItem {
public:
    using QTreeWidgetItem::QTreeWidgetItem;
    bool operator<(const QTreeWidgetItem& other) const override
    {
        const int column = treeWidget() ? treeWidget()->sortColumn() : 0;
        if (column == 1) return data(1, Qt::UserRole).toDouble() < other.data(1, Qt::UserRole).toDouble();
        return text(column).compare(other.text(column), Qt::CaseInsensitive) < 0;
    }
};

constexpr int kIndexRole = Qt::UserRole + 1;

}  // namespace

QString QtFileFilter(const char* pipeFilter)
{
    const QStringList parts = QString::fromLatin1(pipeFilter).split(QLatin1Char('|'));
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        const QString description = parts[i];
        const QString pattern = parts[i + 1];
        if (description.isEmpty()) break;  // the "||" that ends the list
        QString patterns = pattern;
        patterns.replace(QLatin1Char(';'), QLatin1Char(' '));
        filters << (description.contains(QLatin1Char('(')) ? description
                                                           : QStringLiteral("%1 (%2)").arg(description, patterns));
    }
    return filters.join(QStringLiteral(";;"));
}

// ------------------------------------------------------------------ document

CSatelliteDoc::CSatelliteDoc(CSettingsStore& store, QObject* parent) : QObject(parent), m_store(store)
{
    m_settings.Load(store);
    if (!m_settings.tleFile.empty()) m_list.Load(m_settings.tleFile);
}

bool CSatelliteDoc::LoadFile(const QString& path)
{
    if (!m_list.Load(path.toStdString())) return false;
    m_settings.tleFile = path.toStdString();
    m_store.SetString(sat::kEarthSatSection, "TLEFile", m_settings.tleFile);
    m_store.Flush();
    emit ListChanged();
    return true;
}

void CSatelliteDoc::SetSettings(const sat::CEarthSatSettings& settings)
{
    m_settings = settings;
    m_settings.Save(m_store);
    m_store.Flush();
}

// ------------------------------------------------------------------ elements box

CSatelliteElementsDialog::CSatelliteElementsDialog(const sat::SatelliteRecord& record, QWidget* parent)
    : QDialog(parent), m_record(record)
{
    setWindowTitle(QStringLiteral("Satellite Orbital Elements"));
    auto* layout = new QVBoxLayout(this);
    m_text = new QPlainTextEdit(this);
    m_text->setReadOnly(true);
    m_text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_text->setLineWrapMode(QPlainTextEdit::NoWrap);
    QStringList lines;
    for (const std::string& line : sat::DescribeElements(record)) lines << ToQ(line);
    m_text->setPlainText(lines.join(QLatin1Char('\n')));
    const QFontMetrics fm(m_text->font());
    int widest = 0;
    for (const QString& l : lines) widest = std::max(widest, fm.horizontalAdvance(l));
    m_text->setMinimumSize(widest + 40, fm.lineSpacing() * (static_cast<int>(lines.size()) + 2));
    layout->addWidget(m_text);

    auto* buttons = new QDialogButtonBox(this);
    QPushButton* copy = buttons->addButton(QStringLiteral("&Copy"), QDialogButtonBox::ActionRole);
    buttons->addButton(QDialogButtonBox::Close);
    connect(copy, &QPushButton::clicked, this, &CSatelliteElementsDialog::Copy);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
}

QString CSatelliteElementsDialog::Text() const { return m_text->toPlainText(); }

void CSatelliteElementsDialog::Copy()
{
    QGuiApplication::clipboard()->setText(ToQ(sat::ElementDescriptionClipboardText(m_record)));
}

// ------------------------------------------------------------------ list window

CSatelliteListWindow::CSatelliteListWindow(CSatelliteDoc& doc, QWidget* parent)
    : QWidget(parent, Qt::Window), m_doc(doc)
{
    setAttribute(Qt::WA_DeleteOnClose);
    auto* layout = new QVBoxLayout(this);

    auto* findRow = new QHBoxLayout;
    m_filter = new QLineEdit(this);
    m_filter->setPlaceholderText(tr("Name or catalogue number"));
    m_filter->setClearButtonEnabled(true);
    findRow->addWidget(new QLabel(tr("Find:"), this));
    findRow->addWidget(m_filter, 1);
    m_count = new QLabel(this);
    findRow->addWidget(m_count);
    layout->addLayout(findRow);

    m_tree = new QTreeWidget(this);
    m_tree->setColumnCount(2);
    m_tree->setHeaderLabels({QStringLiteral("Name"), QStringLiteral("Period")});
    m_tree->setRootIsDecorated(false);
    m_tree->setUniformRowHeights(true);
    m_tree->setAlternatingRowColors(true);
    m_tree->setSelectionMode(QAbstractItemView::SingleSelection);
    m_tree->setSortingEnabled(true);
    m_tree->sortByColumn(-1, Qt::AscendingOrder);  // file order until the user sorts
    m_tree->header()->setStretchLastSection(false);
    m_tree->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_tree->headerItem()->setTextAlignment(1, Qt::AlignRight | Qt::AlignVCenter);
    m_tree->headerItem()->setToolTip(1, tr("Orbital period, minutes"));
    layout->addWidget(m_tree, 1);

    auto* buttons = new QHBoxLayout;
    auto add = [&](const QString& text, auto signal) {
        auto* b = new QPushButton(text, this);
        connect(b, &QPushButton::clicked, this, signal);
        buttons->addWidget(b);
        return b;
    };
    add(QStringLiteral("Open..."), &CSatelliteListWindow::OpenRequested);
    add(tr("&Elements..."), &CSatelliteListWindow::ElementsRequested);
    add(tr("&Ground Track..."), &CSatelliteListWindow::GroundTrackRequested);
    add(tr("&Passes..."), &CSatelliteListWindow::PassesRequested);
    buttons->addStretch(1);
    auto* close = new QPushButton(tr("Close"), this);
    connect(close, &QPushButton::clicked, this, &QWidget::close);
    buttons->addWidget(close);
    layout->addLayout(buttons);

    connect(m_tree, &QTreeWidget::itemDoubleClicked, this, &CSatelliteListWindow::ElementsRequested);
    connect(m_filter, &QLineEdit::textChanged, this, &CSatelliteListWindow::ApplyFilter);
    connect(&m_doc, &CSatelliteDoc::ListChanged, this, &CSatelliteListWindow::Fill);
    Fill();
    resize(420, 520);
}

void CSatelliteListWindow::Fill()
{
    const QString file = QFileInfo(m_doc.FileName()).fileName();
    setWindowTitle(file.isEmpty() ? QStringLiteral("Satellite List") : QStringLiteral("Satellite List - ") + file);
    m_tree->setSortingEnabled(false);
    m_tree->clear();
    const auto& records = m_doc.List().Records();
    QList<QTreeWidgetItem*> items;
    items.reserve(static_cast<qsizetype>(records.size()));
    for (std::size_t i = 0; i < records.size(); ++i) {
        auto* item = new CSatelliteItem;
        item->setText(0, ToQ(records[i].name));
        item->setText(1, QString::number(records[i].periodMinutes, 'f', 2));
        item->setData(1, Qt::UserRole, records[i].periodMinutes);
        item->setData(0, kIndexRole, static_cast<int>(i));
        item->setTextAlignment(1, Qt::AlignRight | Qt::AlignVCenter);
        item->setToolTip(0, tr("NORAD %1, %2").arg(records[i].catalogNumber).arg(ToQ(records[i].internationalDesignator)));
        items << item;
    }
    m_tree->addTopLevelItems(items);
    m_tree->setSortingEnabled(true);
    m_tree->resizeColumnToContents(1);
    ApplyFilter(m_filter->text());
}

void CSatelliteListWindow::ApplyFilter(const QString& text)
{
    const QString wanted = text.trimmed();
    bool isNumber = false;
    const int number = wanted.toInt(&isNumber);
    int shown = 0;
    const auto& records = m_doc.List().Records();
    for (int i = 0; i < m_tree->topLevelItemCount(); ++i) {
        QTreeWidgetItem* item = m_tree->topLevelItem(i);
        const auto index = static_cast<std::size_t>(item->data(0, kIndexRole).toInt());
        const bool match = wanted.isEmpty() || item->text(0).contains(wanted, Qt::CaseInsensitive) ||
                           (isNumber && index < records.size() && records[index].catalogNumber == number);
        item->setHidden(!match);
        shown += match ? 1 : 0;
    }
    m_count->setText(wanted.isEmpty() ? (m_tree->topLevelItemCount() == 1 ? tr("1 satellite")
                                                                         : tr("%1 satellites").arg(m_tree->topLevelItemCount()))
                                      : tr("%1 of %2").arg(shown).arg(m_tree->topLevelItemCount()));
}

int CSatelliteListWindow::SelectedIndex() const
{
    const QList<QTreeWidgetItem*> selected = m_tree->selectedItems();
    if (selected.isEmpty() || selected.front()->isHidden()) return -1;
    return selected.front()->data(0, kIndexRole).toInt();
}

void CSatelliteListWindow::Select(int index)
{
    for (int i = 0; i < m_tree->topLevelItemCount(); ++i) {
        QTreeWidgetItem* item = m_tree->topLevelItem(i);
        if (item->data(0, kIndexRole).toInt() == index) {
            m_tree->setCurrentItem(item);
            item->setSelected(true);
            m_tree->scrollToItem(item);
            return;
        }
    }
    m_tree->clearSelection();
}

// ------------------------------------------------------------------ commands

CSatelliteCommands::CSatelliteCommands(CAppContext& app, QWidget* frame, std::function<CMapWindow*()> activeMap)
    : QObject(frame), m_app(app), m_frame(frame), m_activeMap(std::move(activeMap)), m_doc(app.Settings())
{
    m_menu = new QMenu(tr("&Satellites"), frame);
    m_menu->addAction(tr("&Open elements..."), this, &CSatelliteCommands::OpenElementFile);
    m_menu->addAction(tr("Satellite &List"), this, &CSatelliteCommands::ShowList);
    m_menu->addSeparator();
    m_menu->addAction(tr("Orbital &Elements"), this, &CSatelliteCommands::ShowElements);
    m_menu->addAction(tr("&Ground Track..."), this, &CSatelliteCommands::GroundTrack);
    m_menu->addAction(tr("&Passes..."), this, &CSatelliteCommands::Passes);
    m_menu->addSeparator();
    m_clearAct = m_menu->addAction(tr("&Clear plotted passes"), this, &CSatelliteCommands::ClearPlottedPasses);
    connect(m_menu, &QMenu::aboutToShow, this, &CSatelliteCommands::UpdateMenu);
}

CSatelliteCommands::~CSatelliteCommands()
{
    if (m_listWindow) m_listWindow->disconnect(this);
    delete m_listWindow;
}

void CSatelliteCommands::UpdateMenu()
{
    CMapWindow* map = m_activeMap ? m_activeMap() : nullptr;
    m_clearAct->setEnabled(map != nullptr && !map->PlottedPasses().passes.empty());
}

void CSatelliteCommands::OpenElementFile()
{
    QString folder = m_app.RememberedFolder(kSatelliteFolderKey);
    if (folder.isEmpty() && !m_doc.FileName().isEmpty()) folder = QFileInfo(m_doc.FileName()).absolutePath();
    const QString path = QFileDialog::getOpenFileName(m_frame, tr("Open Element File"), folder,
                                                      QtFileFilter(kElementFileFilter));
    if (path.isEmpty()) return;
    m_app.RememberFolder(kSatelliteFolderKey, path);
    // A file that cannot be read leaves the list as it was.
    if (m_doc.LoadFile(path)) ShowList();
}

void CSatelliteCommands::ShowList()
{
    if (!m_listWindow) {
        m_listWindow = new CSatelliteListWindow(m_doc, m_frame);
        connect(m_listWindow, &CSatelliteListWindow::OpenRequested, this, &CSatelliteCommands::OpenElementFile);
        connect(m_listWindow, &CSatelliteListWindow::ElementsRequested, this, &CSatelliteCommands::ShowElements);
        connect(m_listWindow, &CSatelliteListWindow::GroundTrackRequested, this, &CSatelliteCommands::GroundTrack);
        connect(m_listWindow, &CSatelliteListWindow::PassesRequested, this, &CSatelliteCommands::Passes);
    }
    m_listWindow->show();
    m_listWindow->raise();
    m_listWindow->activateWindow();
}

int CSatelliteCommands::Selection() const { return m_listWindow ? m_listWindow->SelectedIndex() : -1; }

int CSatelliteCommands::RequireSelection()
{
    const int index = Selection();
    if (index >= 0 && static_cast<std::size_t>(index) < m_doc.List().Size()) return index;
    QWidget* parent = m_listWindow && m_listWindow->isVisible() ? static_cast<QWidget*>(m_listWindow) : m_frame;
    QMessageBox::information(parent, QApplication::applicationName(),
                             QString::fromLatin1(sat::kSelectSatelliteMessage));
    if (!m_listWindow || !m_listWindow->isVisible()) ShowList();
    return -1;
}

CObserverDoc CSatelliteCommands::Observer() const
{
    if (CMapWindow* map = m_activeMap ? m_activeMap() : nullptr) return map->Doc().observer;
    CObserverDoc observer;
    observer.LoadSettings(m_app.Settings());
    observer.SetToNow();
    return observer;
}

void CSatelliteCommands::ShowElements()
{
    const int index = RequireSelection();
    if (index < 0) return;
    CSatelliteElementsDialog dialog(m_doc.List()[static_cast<std::size_t>(index)],
                                    m_listWindow ? static_cast<QWidget*>(m_listWindow) : m_frame);
    dialog.exec();
}

void CSatelliteCommands::GroundTrack()
{
    const int index = RequireSelection();
    if (index < 0) return;
    CSatelliteGndTrkSheet sheet(m_app, m_doc, index, Observer(), m_frame);
    sheet.exec();
}

void CSatelliteCommands::Passes()
{
    int index = Selection();
    if (index < 0 || static_cast<std::size_t>(index) >= m_doc.List().Size()) {
        // The search of every satellite needs no selection.
        if (m_doc.Settings().passScope != sat::PassScope::AllSatellites || m_doc.List().Empty()) {
            RequireSelection();
            return;
        }
        index = -1;
    }
    auto plot = [this](sat::PlottedPassList passes) {
        CMapWindow* map = m_activeMap ? m_activeMap() : nullptr;
        if (map == nullptr) return false;
        map->SetPlottedPasses(std::move(passes));
        return true;
    };
    CSatellitePassSheet sheet(m_app, m_doc, index, Observer(), plot, m_frame);
    sheet.exec();
}

void CSatelliteCommands::ClearPlottedPasses()
{
    if (CMapWindow* map = m_activeMap ? m_activeMap() : nullptr) map->ClearPlottedPasses();
}

}  // namespace orv
