#include "map/chartframe.h"

#include <cmath>

#include "observer/observer.h"
#include "util/angles.h"

namespace orv {

namespace {

void MatVec(const double m[3][3], const double in[3], double out[3])
{
    for (int i = 0; i < 3; ++i) out[i] = m[i][0] * in[0] + m[i][1] * in[1] + m[i][2] * in[2];
}

void MatMul(const double a[3][3], const double b[3][3], double out[3][3])
{
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) out[i][j] = a[i][0] * b[0][j] + a[i][1] * b[1][j] + a[i][2] * b[2][j];
}

}  // namespace

CChartFrame::CChartFrame(const CObserverDoc& observer, const CCoordinates& coordinates,
                         const IEarthVelocitySource& velocity)
    : m_observer(&observer),
      m_coordinates(&coordinates),
      m_horizontal(coordinates.CentringMode() == Centring::AltAz),
      m_velocity(velocity.AtTT(observer.JulianDateTDT()))
{
    // J2000 → true of date, column by column through the observer's cached
    // precession and nutation.
    double precNut[3][3];
    for (int j = 0; j < 3; ++j) {
        double e[3] = {0.0, 0.0, 0.0};
        e[j] = 1.0;
        observer.PrecessXYZ(e, -1);
        observer.NutateXYZ(e);
        for (int i = 0; i < 3; ++i) precNut[i][j] = e[i];
    }
    if (m_horizontal) {
        // True equator of date → (north, −east, up) at the site: rotate by the
        // local apparent sidereal time, then tilt by the latitude.
        const double theta = observer.LAST() * kRadPerHour;
        const double ct = std::cos(theta), st = std::sin(theta);
        const double phi = observer.LatitudeRad();
        const double cp = std::cos(phi), sp = std::sin(phi);
        const double hourAngle[3][3] = {{ct, st, 0.0}, {-st, ct, 0.0}, {0.0, 0.0, 1.0}};
        // Rows: north, −east and up, from the hour-angle frame (x toward the
        // meridian, y toward the east, z toward the pole).
        const double horizon[3][3] = {{-sp, 0.0, cp}, {0.0, -1.0, 0.0}, {cp, 0.0, sp}};
        MatMul(horizon, hourAngle, m_dateToFrame);
    } else {
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j) m_dateToFrame[i][j] = i == j ? 1.0 : 0.0;
    }
    MatMul(m_dateToFrame, precNut, m_catalogueToFrame);

    const double lon0 = coordinates.FrameCentreLonRad(), lat0 = coordinates.FrameCentreLatRad();
    FrameLonLatToVector(lon0, lat0, m_centre);
    m_east[0] = -std::sin(lon0);
    m_east[1] = std::cos(lon0);
    m_east[2] = 0.0;
    m_south[0] = std::sin(lat0) * std::cos(lon0);
    m_south[1] = std::sin(lat0) * std::sin(lon0);
    m_south[2] = -std::cos(lat0);
}

void CChartFrame::FrameLonLatToVector(double lonRad, double latRad, double v[3])
{
    SphericalToVector(lonRad, latRad, v);
}

void CChartFrame::Refract(double v[3]) const
{
    // The chart's rule: refraction is applied above −0.1 rad, and only when
    // it leaves the object at or above the horizon.
    const double horiz = std::hypot(v[0], v[1]);
    const double h = std::atan2(v[2], horiz);
    if (!(h > -0.1)) return;
    const double lifted = h + m_observer->Refraction(h);
    if (lifted < 0.0) return;
    const double c = std::cos(lifted);
    const double scale = horiz > 0.0 ? c / horiz : 0.0;
    v[0] *= scale;
    v[1] *= scale;
    v[2] = std::sin(lifted);
}

void CChartFrame::CatalogueToFrame(double raJ2000Rad, double decJ2000Rad, EpochPath path, double v[3]) const
{
    double p[3];
    SphericalToVector(raJ2000Rad, decJ2000Rad, p);
    if (path == EpochPath::Apparent) ApplyAberration(p, m_velocity);
    MatVec(m_catalogueToFrame, p, v);
    if (m_horizontal) Refract(v);
}

void CChartFrame::DateToFrame(double raDateRad, double decDateRad, double v[3]) const
{
    double p[3];
    SphericalToVector(raDateRad, decDateRad, p);
    MatVec(m_dateToFrame, p, v);
    if (m_horizontal) Refract(v);
}

void CChartFrame::HorizontalToFrame(double altRad, double azRad, double v[3]) const
{
    if (m_horizontal) {
        SphericalToVector(-azRad, altRad, v);
        return;
    }
    double ra = 0.0, dec = 0.0;
    HorizontalToEquatorial(*m_observer, altRad, azRad, ra, dec);
    SphericalToVector(ra, dec, v);
}

bool CChartFrame::ToPlane(const double v[3], PlanePoint& p) const
{
    const double denom = 1.0 + CosFromCentre(v);
    if (!(denom > 1e-12)) return false;
    const double k = 2.0 / denom;
    p.x = k * (v[0] * m_east[0] + v[1] * m_east[1] + v[2] * m_east[2]);
    p.y = k * (v[0] * m_south[0] + v[1] * m_south[1] + v[2] * m_south[2]);
    return true;
}

bool CChartFrame::ToScreen(const double v[3], ScreenPoint& s) const
{
    PlanePoint p;
    if (!ToPlane(v, p)) return false;
    s = m_coordinates->PlaneToScreen(p);
    return true;
}

CChartFrame::ScreenRows CChartFrame::ProjectionRows() const
{
    // The screen mapping is affine in the plane point: its origin and the
    // images of the plane's two unit steps.
    const ScreenPoint o = m_coordinates->PlaneToScreen(PlanePoint{0.0, 0.0});
    const ScreenPoint ex = m_coordinates->PlaneToScreen(PlanePoint{1.0, 0.0});
    const ScreenPoint ey = m_coordinates->PlaneToScreen(PlanePoint{0.0, 1.0});
    ScreenRows r{};
    for (int i = 0; i < 3; ++i) {
        r.centre[i] = m_centre[i];
        r.x[i] = (ex.x - o.x) * m_east[i] + (ey.x - o.x) * m_south[i];
        r.y[i] = (ex.y - o.y) * m_east[i] + (ey.y - o.y) * m_south[i];
    }
    r.x0 = o.x;
    r.y0 = o.y;
    return r;
}

bool CChartFrame::CatalogueToScreen(double raJ2000Rad, double decJ2000Rad, EpochPath path, ScreenPoint& s) const
{
    double v[3];
    CatalogueToFrame(raJ2000Rad, decJ2000Rad, path, v);
    return ToScreen(v, s);
}

void CChartFrame::ScreenToFrame(double xPx, double yPx, double& lonRad, double& latRad) const
{
    m_coordinates->PlaneToFrame(m_coordinates->ScreenToPlane(xPx, yPx), lonRad, latRad);
}

void CChartFrame::ScreenToHorizontal(double xPx, double yPx, double& altRad, double& azRad) const
{
    double lon = 0.0, lat = 0.0;
    ScreenToFrame(xPx, yPx, lon, lat);
    if (m_horizontal) {
        altRad = lat;
        azRad = mod2pi(-lon);
    } else {
        EquatorialToHorizontal(*m_observer, lon, lat, altRad, azRad);
    }
}

void CChartFrame::ScreenToDate(double xPx, double yPx, double& raRad, double& decRad) const
{
    double lon = 0.0, lat = 0.0;
    ScreenToFrame(xPx, yPx, lon, lat);
    if (m_horizontal) {
        HorizontalToEquatorial(*m_observer, lat, mod2pi(-lon), raRad, decRad);
    } else {
        raRad = lon;
        decRad = lat;
    }
}

void CChartFrame::ScreenToCatalogue(double xPx, double yPx, double& raRad, double& decRad) const
{
    ScreenToDate(xPx, yPx, raRad, decRad);
    DateToCatalogue(*m_observer, raRad, decRad);
}

}  // namespace orv
