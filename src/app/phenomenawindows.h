// The phenomena search window: the kind of event, the bodies (a planet, the
// Sun or the Moon, a catalogued asteroid or comet, a star or a deep-sky
// object by name), the start, the duration and the calculation interval;
// the search runs on a worker thread with a progress bar and Cancel, and
// its events fill the shared result-table panel (Save as text, Save as data
// table).
#pragma once

#include <QDialog>

#include <optional>
#include <string>
#include <vector>

#include "observer/observer.h"
#include "phenomena/phenomena.h"

class QComboBox;
class QDateEdit;
class QDoubleSpinBox;
class QLabel;
class QLineEdit;

namespace orv {

class CAppContext;
class CMapWindow;
class CResultTablePanel;

// What the dialog edits. Body choices: 0–9 the CPlanets bodies, then the
// named kinds below; `name` is the catalogue entry or object for those.
inline constexpr int kPhenomenaChoiceEarth = 10;
inline constexpr int kPhenomenaChoiceAsteroid = 11;
inline constexpr int kPhenomenaChoiceComet = 12;
inline constexpr int kPhenomenaChoiceStar = 13;
inline constexpr int kPhenomenaChoiceDeepSky = 14;
// Every planet, Mercury … Pluto: one search for each (against each body of
// the other choice), each in a section of its own.
inline constexpr int kPhenomenaChoiceAllPlanets = 15;

struct PhenomenaBodyChoice {
    int choice = -1;  // nothing chosen
    std::string name;
};

struct PhenomenaChoice {
    int kind = -1;  // nothing chosen
    PhenomenaBodyChoice first, second;
    double jdUTStart = 0.0;
    double durationDays = 365.0;
    double intervalHours = 1.0;
};

// The dialog's checks before any body is looked up, each the message shown
// ("You must select the type of event to search for." …); nothing when the
// choice can be searched.
std::optional<std::string> ValidatePhenomenaChoice(const PhenomenaChoice& choice);

class CPhenomenaDialog : public QDialog {
    Q_OBJECT
public:
    CPhenomenaDialog(const CObserverDoc& site, CAppContext& app, QWidget* parent = nullptr);
    PhenomenaChoice Choice() const;
    // Validates, looks the bodies up, searches and shows the table; false
    // (with the message shown) when refused, cancelled or nothing found.
    bool Search();
    CResultTablePanel* Panel() const { return m_panel; }

protected:
    void reject() override;

private:
    // The body of a choice; the message for the user otherwise.
    std::optional<PhenomenonBody> Resolve(const PhenomenaBodyChoice& choice, std::string& message);
    // The bodies of a choice: one, or every planet; empty (with the message)
    // when refused.
    std::vector<PhenomenonBody> ResolveAll(const PhenomenaBodyChoice& choice, std::string& message);
    void UpdateEnabled();

    CObserverDoc m_site;
    CAppContext& m_app;
    QComboBox* m_kind = nullptr;
    QComboBox* m_first = nullptr;
    QLineEdit* m_firstName = nullptr;
    QComboBox* m_second = nullptr;
    QLineEdit* m_secondName = nullptr;
    QDateEdit* m_start = nullptr;
    QDoubleSpinBox* m_duration = nullptr;
    QDoubleSpinBox* m_interval = nullptr;
    QLabel* m_message = nullptr;
    CResultTablePanel* m_panel = nullptr;
    bool m_running = false;
    bool m_cancelRequested = false;
};

// Opens the window for the site and date of a map.
void ShowPhenomena(QWidget* parent, CMapWindow& window, CAppContext& app);

}  // namespace orv
