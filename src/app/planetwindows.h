// The planet windows: the list of the Sun, Moon, planets and satellites
// visible on a chart, the ephemeris of a body over a span of dates (on the
// shared result-table panel, with its report and data table), and the
// dialog that plots a body's path on a chart.
#pragma once

#include <QDialog>

#include <vector>

#include "solarsystem/planetephemeris.h"

class QCheckBox;
class QComboBox;
class QDateEdit;
class QDoubleSpinBox;
class QLabel;

namespace orv {

class CAppContext;
class CMapWindow;
class CResultTablePanel;

// "Planets Visible on the Map": the bodies the window's last drawing
// recorded; a double click centres the chart on one.
class CVisiblePlanetsDialog : public QDialog {
    Q_OBJECT
public:
    CVisiblePlanetsDialog(CMapWindow& window, CAppContext& app, QWidget* parent = nullptr);
    const std::vector<VisiblePlanetRow>& Rows() const { return m_rows; }
    CResultTablePanel* Panel() const { return m_panel; }

private:
    void CentreOnRow(int tableRow);

    CMapWindow& m_window;
    std::vector<VisiblePlanetRow> m_rows;
    CResultTablePanel* m_panel = nullptr;
};
void ShowVisiblePlanets(QWidget* parent, CMapWindow& window, CAppContext& app);

// The body, the span and the step of an ephemeris or a path, as the
// dialogs edit them; dates are the site's local civil dates.
struct PlanetSpanChoice {
    int body = 5;  // Jupiter
    int fromYear = 2026, fromMonth = 1, fromDay = 1;
    int toYear = 2026, toMonth = 2, toDay = 1;
    double stepDays = 1.0;
    bool topocentric = false;
};
// The span's Julian dates (UT) for the site: local midnight of the first
// date, and of the last (the ephemeris includes it; a path ends there).
void SpanJulianDates(const CObserverDoc& site, const PlanetSpanChoice& choice, double& jdUTFrom, double& jdUTTo);

// The ephemeris window for the site and instant of a map: body, from, to,
// step; Compute fills the table (with a progress bar and Cancel for long
// spans).
class CEphemerisDialog : public QDialog {
    Q_OBJECT
public:
    CEphemerisDialog(const CObserverDoc& site, CAppContext& app, QWidget* parent = nullptr);
    PlanetSpanChoice Choice() const;
    void SetChoice(const PlanetSpanChoice& choice);
    // Computes and shows the table; false (with the message shown) when
    // the request is refused or cancelled.
    bool Compute();
    CResultTablePanel* Panel() const { return m_panel; }
    // Rise and set over this horizon profile (the map's, when its horizon
    // is to be used for events); none: the mathematical horizon.
    void SetHorizon(std::shared_ptr<const HorizonProfile> horizon) { m_horizon = std::move(horizon); }

private:
    CObserverDoc m_site;
    CAppContext& m_app;
    std::shared_ptr<const HorizonProfile> m_horizon;
    QComboBox* m_body = nullptr;
    QDateEdit* m_from = nullptr;
    QDateEdit* m_to = nullptr;
    QDoubleSpinBox* m_step = nullptr;
    QCheckBox* m_topocentric = nullptr;
    QLabel* m_message = nullptr;
    CResultTablePanel* m_panel = nullptr;
};
void ShowEphemeris(QWidget* parent, CMapWindow& window, CAppContext& app);

// "Plot Planet Path": body, from, to and the step of the dated marks; OK
// computes the path and adds it to the window's chart.
class CPlanetPathDialog : public QDialog {
    Q_OBJECT
public:
    CPlanetPathDialog(const CObserverDoc& site, QWidget* parent = nullptr);
    PlanetSpanChoice Choice() const;

private:
    QComboBox* m_body = nullptr;
    QDateEdit* m_from = nullptr;
    QDateEdit* m_to = nullptr;
    QDoubleSpinBox* m_step = nullptr;
};
// Asks for a path, computes it (progress with Cancel) and plots it on the
// window; false when the user cancels or the request is refused.
bool PlotPlanetPath(QWidget* parent, CMapWindow& window);
void ClearPlanetPaths(CMapWindow& window);

}  // namespace orv
