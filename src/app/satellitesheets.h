// The ground-track sheet (CSatelliteGndTrkSheet: the settings page, the
// table page and the world-map page) and the pass sheet (CSatellitePassSheet:
// the selection page and the table page, from which passes are plotted on
// the star chart). Each sheet edits a copy of the "EarthSat" settings and
// hands it back to the satellite document when it closes with OK.
//
// The computations are the satellite core's (ComputeGroundTrack,
// SearchSatellitePasses, SearchAllSatellitePasses) and so are the tables'
// texts (MakeGroundTrackTable, MakePassTable, TableText, SaveTableReport);
// the sheets only collect the settings, ask the epoch-age question, show
// progress and show the results.
#pragma once

#include <QDate>
#include <QDialog>
#include <QWidget>

#include <functional>
#include <map>
#include <utility>
#include <vector>

#include "observer/observer.h"
#include "satellite/elements.h"
#include "satellite/groundtrack.h"
#include "satellite/groundtrackmap.h"
#include "satellite/passdraw.h"
#include "satellite/passes.h"
#include "satellite/satsettings.h"
#include "app/resulttablepanel.h"
#include "satellite/sattables.h"

class QCheckBox;
class QComboBox;
class QDateEdit;
class QDateTimeEdit;
class QLabel;
class QPushButton;
class QRadioButton;
class QSpinBox;
class QTabWidget;

namespace orv {

class CAppContext;
class CSatelliteDoc;

// For each row of the pass table MakePassTable builds from `result`, the
// index into result.passes of the pass it shows; −1 for the blank rows
// between passes.
std::vector<int> PassTableRowOwners(const sat::PassSearchResult& result, const sat::CEarthSatSettings& settings);

// The table of a sheet's table page: the result-table panel, with "Save",
// "Save Table" and "Copy". Column layouts (width and position) come from and
// go back to the settings' GndTrkCol%1d or PassCol%1d entries.
using CSatelliteTablePanel = CResultTablePanel;

// Pass tables of one satellite lack the leading Satellite column of the
// all-satellite table: their columns are stored under the same numbers as
// in that table (PassCol%1d), so one layout serves both. The offset to add
// to a column of `table` for its PassCol number.
int PassColumnKeyOffset(const sat::SatelliteTable& table);

// --------------------------------------------------------------- ground track

// When and how long: the start (local date and time of the site), the
// length or one orbit, the step, and the display units.
class CSatelliteGndTrkPage : public QWidget {
    Q_OBJECT
public:
    CSatelliteGndTrkPage(sat::CEarthSatSettings& settings, const sat::SatelliteRecord& record,
                         double localOffsetHours, double startJdUT, QWidget* parent = nullptr);
    double StartJdUT() const;
    void SetStartJdUT(double jdUT);

    QDateTimeEdit* StartEdit() const { return m_start; }
    QRadioButton* LengthChoice() const { return m_lengthChoice; }
    QRadioButton* OrbitChoice() const { return m_orbitChoice; }
    QSpinBox* LengthEdit() const { return m_length; }
    QSpinBox* IntervalEdit() const { return m_interval; }

signals:
    void Changed();

private:
    sat::CEarthSatSettings& m_settings;
    double m_localOffsetHours;
    QDateTimeEdit* m_start = nullptr;
    QRadioButton* m_lengthChoice = nullptr;
    QRadioButton* m_orbitChoice = nullptr;
    QSpinBox* m_length = nullptr;
    QSpinBox* m_interval = nullptr;
};

class CSatelliteGndTrkTablePage : public QWidget {
    Q_OBJECT
public:
    CSatelliteGndTrkTablePage(CAppContext& app, QWidget* parent = nullptr);
    CSatelliteTablePanel* Panel() const { return m_panel; }

signals:
    void ShiftOrbits(int orbits);  // "+1 Orbit" / "-1 Orbit"

private:
    CSatelliteTablePanel* m_panel = nullptr;
};

class CGroundTrackCanvas;

class CSatelliteGndTrkMapPage : public QWidget {
    Q_OBJECT
public:
    explicit CSatelliteGndTrkMapPage(QWidget* parent = nullptr);
    void SetTrack(const sat::GroundTrackResult& track, const std::string& title, double localOffsetHours);
    // Turns the map by whole steps of 15° ("<" west, ">" east).
    void Rotate(int steps);
    double CentralLongitudeDeg() const;
    int LabelIntervalMin() const;
    // The page's map drawn on an image of the given size.
    QImage Render(const QSize& size) const;

private:
    CGroundTrackCanvas* m_canvas = nullptr;
    QSpinBox* m_labelInterval = nullptr;
};

class CSatelliteGndTrkSheet : public QDialog {
    Q_OBJECT
public:
    enum Page { kSettingsPage = 0, kTablePage = 1, kMapPage = 2 };
    CSatelliteGndTrkSheet(CAppContext& app, CSatelliteDoc& doc, int satelliteIndex, const CObserverDoc& observer,
                          QWidget* parent = nullptr);

    void ShowPage(int page);
    // Computes the track for the settings page as it stands (asking the
    // epoch-age question when due); false when the user abandoned it.
    bool Compute();
    const sat::GroundTrackResult& Track() const { return m_track; }
    const sat::CEarthSatSettings& WorkingSettings() const { return m_settings; }
    CSatelliteGndTrkPage* SettingsPage() const { return m_settingsPage; }
    CSatelliteGndTrkTablePage* TablePage() const { return m_tablePage; }
    CSatelliteGndTrkMapPage* MapPage() const { return m_mapPage; }
    void accept() override;

private:
    void ShiftOrbits(int orbits);

    CSatelliteDoc& m_doc;
    sat::SatelliteRecord m_record;
    double m_localOffsetHours;
    sat::CEarthSatSettings m_settings;
    sat::GroundTrackResult m_track;
    bool m_stale = true;
    QTabWidget* m_tabs = nullptr;
    CSatelliteGndTrkPage* m_settingsPage = nullptr;
    CSatelliteGndTrkTablePage* m_tablePage = nullptr;
    CSatelliteGndTrkMapPage* m_mapPage = nullptr;
};

// --------------------------------------------------------------- passes

class CSatellitePassSelectPage : public QWidget {
    Q_OBJECT
public:
    // `satelliteName` empty: no satellite is selected, only the search of all
    // satellites is offered.
    CSatellitePassSelectPage(sat::CEarthSatSettings& settings, const QString& satelliteName, QDate startDate,
                             QWidget* parent = nullptr);
    QDate StartDate() const;
    void SetStartDate(QDate date);

    QDateEdit* DateEdit() const { return m_date; }
    QCheckBox* VisibleCheck() const { return m_visible; }
    QCheckBox* MinAltitudeCheck() const { return m_minAltFlag; }
    QSpinBox* MinAltitudeEdit() const { return m_minAlt; }
    QRadioButton* SelectedChoice() const { return m_selected; }
    QRadioButton* AllChoice() const { return m_all; }
    QRadioButton* SummaryChoice() const { return m_summary; }
    QRadioButton* FullChoice() const { return m_full; }
    QSpinBox* DurationEdit() const { return m_duration; }
    QSpinBox* PositionIntervalEdit() const { return m_positionInterval; }
    QSpinBox* LabelIntervalEdit() const { return m_labelInterval; }

signals:
    void Changed();

private:
    sat::CEarthSatSettings& m_settings;
    QDateEdit* m_date = nullptr;
    QCheckBox* m_visible = nullptr;
    QCheckBox* m_minAltFlag = nullptr;
    QSpinBox* m_minAlt = nullptr;
    QRadioButton* m_selected = nullptr;
    QRadioButton* m_all = nullptr;
    QRadioButton* m_summary = nullptr;
    QRadioButton* m_full = nullptr;
    QSpinBox* m_duration = nullptr;
    QSpinBox* m_positionInterval = nullptr;
    QSpinBox* m_labelInterval = nullptr;
};

class CSatellitePassTablePage : public QWidget {
    Q_OBJECT
public:
    CSatellitePassTablePage(CAppContext& app, QWidget* parent = nullptr);
    CSatelliteTablePanel* Panel() const { return m_panel; }
    QPushButton* PlotButton() const { return m_plot; }
    // A line under the table: how the search ended, what was plotted.
    void SetStatus(const QString& text);
    QString Status() const;

signals:
    void Step(int direction);  // "+" / "-"
    void PlotRequested();

private:
    CSatelliteTablePanel* m_panel = nullptr;
    QPushButton* m_plot = nullptr;
    QLabel* m_status = nullptr;
};

class CSatellitePassSheet : public QDialog {
    Q_OBJECT
public:
    // Puts passes on the active chart; false when there is no chart.
    using PlotFn = std::function<bool(sat::PlottedPassList passes)>;
    enum Page { kSelectPage = 0, kTablePage = 1 };

    // `satelliteIndex` −1: none selected (only all satellites can be searched).
    CSatellitePassSheet(CAppContext& app, CSatelliteDoc& doc, int satelliteIndex, const CObserverDoc& observer,
                        PlotFn plot, QWidget* parent = nullptr);

    void ShowPage(int page);
    // Runs the search for the selection page as it stands, with a progress
    // dialog that can cancel it; false when nothing could be searched.
    bool Compute();
    const sat::PassSearchResult& Result() const { return m_result; }
    // The satellites the result's indices refer to.
    const std::vector<sat::SatelliteRecord>& Searched() const { return m_searched; }
    const sat::CEarthSatSettings& WorkingSettings() const { return m_settings; }
    CSatellitePassSelectPage* SelectPage() const { return m_selectPage; }
    CSatellitePassTablePage* TablePage() const { return m_tablePage; }

    // The passes of the selected table rows (every shown pass when no row is
    // selected), ready for the chart.
    sat::PlottedPassList SelectedPasses() const;
    void PlotSelected();
    // Moves the start by one search period ("+" / "-") and searches again.
    void StepPeriod(int direction);
    void accept() override;

private:
    CAppContext& m_app;
    CSatelliteDoc& m_doc;
    int m_satelliteIndex;
    CObserverDoc m_observer;
    PlotFn m_plot;
    sat::CEarthSatSettings m_settings;
    sat::PassSearchResult m_result;
    sat::CEarthSatSettings m_resultSettings;  // the settings the result was made with
    std::vector<sat::SatelliteRecord> m_searched;
    std::vector<int> m_rowOwners;
    bool m_stale = true;
    QTabWidget* m_tabs = nullptr;
    CSatellitePassSelectPage* m_selectPage = nullptr;
    CSatellitePassTablePage* m_tablePage = nullptr;
};

}  // namespace orv
