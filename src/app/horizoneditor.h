// The horizon editor: the profile drawn over an azimuth scale, changed by
// dragging with the mouse, by typing an altitude for a degree, or with the
// tools between the markers A and B (smooth, flatten, straight line); loaded
// from and saved to ".hzn" files, imported from text lists, with undo. Every
// change is shown at once on the active map; the profile's file becomes the
// horizon in use ("Horizon", "Filename") when it is saved or loaded.
#pragma once

#include <QDialog>
#include <QWidget>

#include <functional>
#include <vector>

#include "map/horizonprofile.h"

class QCheckBox;
class QLabel;
class QSpinBox;

namespace orv {

class CAppContext;

// The profile over the azimuth scale: x azimuth 0–360°, y altitude. The
// left button drags the profile (every degree the mouse passes is set);
// a right click puts marker A there, Shift with a right click marker B.
class CHorizonProfileWidget : public QWidget {
    Q_OBJECT
public:
    explicit CHorizonProfileWidget(QWidget* parent = nullptr);
    void SetProfile(const HorizonProfile* profile) { m_profile = profile; update(); }
    void SetMarkers(int a, int b) { m_a = a; m_b = b; update(); }
    QSize sizeHint() const override { return {760, 300}; }
    // The azimuth (whole degree) and altitude under a widget position.
    int AzimuthAt(double x) const;
    int AltitudeAt(double y) const;
    double XOf(double azDeg) const;
    double YOf(double altDeg) const;

signals:
    void DragStarted();
    // Entries from `fromDeg` to `toDeg` (the mouse's path) get `altitudeDeg`.
    void Dragged(int fromDeg, int toDeg, int fromAltDeg, int toAltDeg);
    void MarkerPlaced(int which, int azDeg);  // 0 A, 1 B

protected:
    void paintEvent(QPaintEvent*) override;
    void mousePressEvent(QMouseEvent* e) override;
    void mouseMoveEvent(QMouseEvent* e) override;
    void mouseReleaseEvent(QMouseEvent* e) override;

private:
    QRectF Plot() const;
    const HorizonProfile* m_profile = nullptr;
    int m_a = 0, m_b = 90;
    bool m_dragging = false;
    int m_lastAz = 0, m_lastAlt = 0;
};

class CHorizonEditorDialog : public QDialog {
    Q_OBJECT
public:
    // `apply` shows a changed profile on the active map.
    CHorizonEditorDialog(CAppContext& app, const HorizonProfile& profile, const QString& fileName,
                         std::function<void(const HorizonProfile&, const QString&)> apply, QWidget* parent = nullptr);

    const HorizonProfile& Profile() const { return m_profile; }
    bool Modified() const { return m_modified; }

protected:
    void closeEvent(QCloseEvent* e) override;
    void reject() override;

private:
    void Edit(const std::function<void(HorizonProfile&)>& change);
    void Undo();
    void Load();
    void Import();
    bool Save();
    bool SaveAs();
    bool SaveTo(const QString& path);
    // Asks to save a modified profile; false when the user cancels.
    bool MaybeSave(const QString& question);
    void Refresh();
    void Applied();

    CAppContext& m_app;
    HorizonProfile m_profile;
    std::vector<HorizonProfile> m_undo;
    QString m_fileName;
    bool m_modified = false;
    std::function<void(const HorizonProfile&, const QString&)> m_apply;

    CHorizonProfileWidget* m_plot = nullptr;
    QSpinBox* m_markerA = nullptr;
    QSpinBox* m_markerB = nullptr;
    QSpinBox* m_altitude = nullptr;
    QSpinBox* m_flatAltitude = nullptr;
    QLabel* m_labelA = nullptr;
    QLabel* m_labelB = nullptr;
    QCheckBox* m_useForEvents = nullptr;
    bool m_refreshing = false;
};

}  // namespace orv
