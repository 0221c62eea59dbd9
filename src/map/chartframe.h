// CChartFrame: the per-redraw fast path from a sky position to a chart pixel.
//
// Built once for a redraw from the observer and the projection, it holds
// everything that depends only on the instant and the chart: the combined
// bias-precession-nutation matrix, the rotation to the horizon, the Earth's
// velocity for aberration, the frame centre as a unit vector and the tangent
// basis of the stereographic projection. Per position the work is then a
// sine and cosine pair, a matrix product and three dot products — no
// allocation and no further trigonometry on equatorial charts.
//
// It gives the same result as the step-by-step functions of skyframes.h and
// CCoordinates (the tests hold it to a microarcsecond of each other).
#pragma once

#include "map/coordinates.h"
#include "map/skyframes.h"

namespace orv {

class CObserverDoc;

// How a catalogue position is brought to the chart's frame.
enum class EpochPath {
    Apparent,  // annual aberration, then precession and nutation: the place of date
    Rigid,     // precession and nutation only: a rotation of the whole sky, for wide
               // charts where aberration (≤ 20.5″) is far below a pixel
};

class CChartFrame {
public:
    CChartFrame(const CObserverDoc& observer, const CCoordinates& coordinates,
                const IEarthVelocitySource& velocity = EarthVelocitySource());

    bool IsHorizontal() const { return m_horizontal; }
    const CCoordinates& Coordinates() const { return *m_coordinates; }
    const CObserverDoc& Observer() const { return *m_observer; }

    // --- Sky → frame vector ----------------------------------------------------
    // Unit vector in the chart's frame: for equatorial charts the true equator
    // and equinox of date; for horizontal charts (north, −east, up), i.e.
    // frame longitude −azimuth, refracted by the chart's rule.
    void CatalogueToFrame(double raJ2000Rad, double decJ2000Rad, EpochPath path, double v[3]) const;
    // From an apparent place of date (planets, the Moon).
    void DateToFrame(double raDateRad, double decDateRad, double v[3]) const;
    // From an apparent altitude and azimuth (horizon profile, alt-az grid).
    void HorizontalToFrame(double altRad, double azRad, double v[3]) const;
    // Refraction by the chart's rule on horizontal charts (nothing on
    // equatorial ones), for a vector already turned into the frame by
    // CatalogueMatrix() (large display lists brought over in one product).
    void RefractFrameVector(double v[3]) const
    {
        if (m_horizontal) Refract(v);
    }
    // From frame longitude and latitude.
    static void FrameLonLatToVector(double lonRad, double latRad, double v[3]);

    // Cosine of the angular distance of a frame vector from the chart centre.
    double CosFromCentre(const double v[3]) const
    {
        return v[0] * m_centre[0] + v[1] * m_centre[1] + v[2] * m_centre[2];
    }

    // --- Frame vector → plane → screen --------------------------------------------
    // False only near the antipode of the centre.
    bool ToPlane(const double v[3], PlanePoint& p) const;
    bool ToScreen(const double v[3], ScreenPoint& s) const;
    bool CatalogueToScreen(double raJ2000Rad, double decJ2000Rad, EpochPath path, ScreenPoint& s) const;
    // ToScreen() as three rows, for loops over many points without a call
    // per point: a frame vector v lies at (x0 + k (x·v), y0 + k (y·v)) with
    // k = 2 / (1 + centre·v), the stereographic projection followed by the
    // screen's rotation, flips and scales.
    struct ScreenRows {
        double centre[3], x[3], y[3];
        double x0, y0;
    };
    ScreenRows ProjectionRows() const;

    // --- Screen → sky ------------------------------------------------------------
    void ScreenToFrame(double xPx, double yPx, double& lonRad, double& latRad) const;
    // Apparent right ascension and declination of date at a pixel.
    void ScreenToDate(double xPx, double yPx, double& raRad, double& decRad) const;
    // Apparent altitude and azimuth at a pixel.
    void ScreenToHorizontal(double xPx, double yPx, double& altRad, double& azRad) const;
    // Catalogue (J2000) position at a pixel.
    void ScreenToCatalogue(double xPx, double yPx, double& raRad, double& decRad) const;

    // The matrix from J2000 (ICRS) to the frame without aberration, and from
    // the true equator of date to the frame.
    const double (*CatalogueMatrix() const)[3] { return m_catalogueToFrame; }

private:
    void Refract(double v[3]) const;

    const CObserverDoc* m_observer;
    const CCoordinates* m_coordinates;
    bool m_horizontal = false;
    EarthVelocity m_velocity;
    double m_catalogueToFrame[3][3];  // J2000 → frame (precession, nutation [, horizon])
    double m_dateToFrame[3][3];       // true equator of date → frame
    double m_centre[3];               // frame centre, unit vector
    double m_east[3];                 // plane x axis: increasing frame longitude at the centre
    double m_south[3];                // plane y axis: decreasing frame latitude at the centre
};

}  // namespace orv
