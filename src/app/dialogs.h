// The settings dialogs of a map: site and time, the star property sheet,
// the grid options and the level table ("View Levels"). Each edits a copy of
// a settings object and hands it back on OK; "Save as Defaults" writes the
// copy to the settings store so that new maps start from it.
#pragma once

#include <QDialog>
#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

#include "map/catalogsettings.h"
#include "map/levels.h"
#include "map/mapview.h"
#include "observer/observer.h"

class QCheckBox;
class QComboBox;
class QDialogButtonBox;
class QDoubleSpinBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QSpinBox;
class QTableWidget;
class QTabWidget;

namespace orv {

class CMapDoc;
class CMapView;
class CMapWindow;
class CAppContext;
class CSettingsStore;

// OK and Cancel for a settings dialog, and "Save as Defaults", which calls
// `saveDefaults` (the dialog's settings written to the stored defaults).
QDialogButtonBox* OkCancelSaveDefaults(QDialog* dialog, std::function<void()> saveDefaults);

// A form whose rows edit integer settings in place.
class CSettingsForm : public QWidget {
    Q_OBJECT
public:
    explicit CSettingsForm(QWidget* parent = nullptr);
    void AddCheck(const QString& label, int& value);
    void AddNumber(const QString& label, int& value, int minimum, int maximum, const QString& suffix = QString());
    // A value stored in hundredths shown with two decimals (magnitudes).
    void AddHundredths(const QString& label, int& value, double minimum, double maximum,
                       const QString& suffix = QString());
    // A value stored in thousandths shown with three decimals (B−V).
    void AddThousandths(const QString& label, int& value, double minimum, double maximum);
    // A level pair shown as levels 1-10, "never" for −1.
    void AddLevels(const QString& label, int& low, int& high);
    void AddChoice(const QString& label, int& value, const QStringList& choices);
    void AddNote(const QString& text);

private:
    QFormLayout* m_form;
};

class CSiteTimeDialog : public QDialog {
    Q_OBJECT
public:
    CSiteTimeDialog(const CObserverDoc& observer, CSettingsStore& settings, QWidget* parent = nullptr);
    // Applies the site and instant to `observer` (and to the stored default
    // site when the user asked for it).
    void Apply(CObserverDoc& observer) const;

private:
    void ShowInstant(double jdUT);
    bool ReadSite(CObserverDoc& into, QString* error) const;
    double EnteredJulianDate() const;
    void UpdateInfo();
    void accept() override;

    CObserverDoc m_working;
    CSettingsStore& m_settings;
    QLineEdit* m_name = nullptr;
    QLineEdit* m_latitude = nullptr;
    QLineEdit* m_longitude = nullptr;
    QDoubleSpinBox* m_height = nullptr;
    QDoubleSpinBox* m_zone = nullptr;
    QCheckBox* m_dst = nullptr;
    QCheckBox* m_universal = nullptr;
    QSpinBox* m_year = nullptr;
    QSpinBox* m_month = nullptr;
    QSpinBox* m_day = nullptr;
    QSpinBox* m_hour = nullptr;
    QSpinBox* m_minute = nullptr;
    QDoubleSpinBox* m_second = nullptr;
    QLabel* m_info = nullptr;
    QCheckBox* m_makeDefault = nullptr;
};

// The star property sheet: pages CStarPageColour, CStarPageDisplay,
// CStarPageGSC, CStarPageOptions and CStarPageLabel, each editing part of the
// "Stars" settings.
class CStarPageColour : public CSettingsForm {
    Q_OBJECT
public:
    CStarPageColour(CStarSettings& s, QWidget* parent = nullptr);
};
class CStarPageDisplay : public CSettingsForm {
    Q_OBJECT
public:
    CStarPageDisplay(CStarSettings& s, QWidget* parent = nullptr);
};
class CStarPageGSC : public CSettingsForm {
    Q_OBJECT
public:
    CStarPageGSC(CStarSettings& s, QWidget* parent = nullptr);
};
class CStarPageOptions : public CSettingsForm {
    Q_OBJECT
public:
    CStarPageOptions(CStarSettings& s, QWidget* parent = nullptr);
};
class CStarPageLabel : public CSettingsForm {
    Q_OBJECT
public:
    CStarPageLabel(CStarSettings& s, QWidget* parent = nullptr);
};

class CStarPropertySheet : public QDialog {
    Q_OBJECT
public:
    CStarPropertySheet(const CStarSettings& settings, CSettingsStore& store, QWidget* parent = nullptr);
    const CStarSettings& Result() const { return m_settings; }

private:
    CStarSettings m_settings;
};

// The constellation property sheet: CConstellationGeneralPage (what is shown
// and at which levels) and CConstellationCornerPage (the corner labels),
// each editing part of the "Constellation" settings.
class CConstellationGeneralPage : public CSettingsForm {
    Q_OBJECT
public:
    CConstellationGeneralPage(CConstellationSettings& s, QWidget* parent = nullptr);
};
class CConstellationCornerPage : public QWidget {
    Q_OBJECT
public:
    CConstellationCornerPage(CConstellationSettings& s, QWidget* parent = nullptr);

private:
    void Fill();
    void EditSelected();
    CConstellationSettings& m_settings;
    QTableWidget* m_list = nullptr;
};
class CConstellationPropertySheet : public QDialog {
    Q_OBJECT
public:
    CConstellationPropertySheet(const CConstellationSettings& settings, CSettingsStore& store,
                                QWidget* parent = nullptr);
    const CConstellationSettings& Result() const { return m_settings; }

private:
    CConstellationSettings m_settings;
};

class CGridOptionsDialog : public QDialog {
    Q_OBJECT
public:
    CGridOptionsDialog(const CMapDoc& doc, const CMapView& view, CSettingsStore& store, QWidget* parent = nullptr);
    ~CGridOptionsDialog() override;
    void Apply(CMapDoc& doc, CMapView& view) const;

private:
    struct Grid;
    std::vector<std::unique_ptr<Grid>> m_grids;
};

// "View Levels": the ten levels' field, star and deep-sky limits and scroll mode.
class CViewLevelsDialog : public QDialog {
    Q_OBJECT
public:
    CViewLevelsDialog(const CLevelTable& levels, QWidget* parent = nullptr);
    CLevelTable Result() const;

private:
    void accept() override;
    QTableWidget* m_table = nullptr;
    CLevelTable m_levels;
};

// The map's print options (title, key, status line, monochrome, margins)
// and time-step options, edited on a copy of the view settings.
class CViewSettingsDialog : public QDialog {
    Q_OBJECT
public:
    enum class Page { Print, TimeStep };
    CViewSettingsDialog(const CMapViewSettings& settings, Page page, CSettingsStore& store, QWidget* parent = nullptr);
    const CMapViewSettings& Result() const { return m_settings; }

private:
    CMapViewSettings m_settings;
};

// The list of the stars on the active chart, with saving and copying.
void ShowVisibleStars(QWidget* parent, CMapWindow& window, CAppContext& app);

}  // namespace orv
