#include "map/coordinates.h"

#include <algorithm>
#include <cmath>

#include "map/mapfileio.h"
#include "map/skyframes.h"
#include "observer/observer.h"
#include "util/binaryio.h"
#include "util/settingsstore.h"

namespace orv {

namespace {
constexpr const char* kSection = "Coordinates";
}

CCoordinates::CCoordinates() { UpdateScales(); }

void CCoordinates::LoadSettings(const CSettingsStore& store)
{
    m_flipHorizontal = static_cast<std::int16_t>(store.GetInt(kSection, "FlipHorizontal", 1) < 0 ? -1 : 1);
    m_flipVertical = static_cast<std::int16_t>(store.GetInt(kSection, "FlipVertical", 1) < 0 ? -1 : 1);
    m_zoomLocked = store.GetInt(kSection, "ZoomLocked", 1);
    // A new map looks up from the horizon of its site: the zenith at the
    // centre and the whole sky within the field.
    m_centreAltRad = store.GetReal(kSection, "InitAlt", 90.0) / kDegPerRad;
    m_centreAzRad = mod2pi(store.GetReal(kSection, "InitAz", 180.0) / kDegPerRad);
    SetFieldDeg(store.GetReal(kSection, "InitField", 90.0));
    m_centring = Centring::AltAz;
}

void CCoordinates::SaveSettings(CSettingsStore& store) const
{
    store.SetInt(kSection, "FlipHorizontal", m_flipHorizontal);
    store.SetInt(kSection, "FlipVertical", m_flipVertical);
    store.SetInt(kSection, "ZoomLocked", m_zoomLocked);
    store.SetReal(kSection, "InitAlt", m_centreAltRad * kDegPerRad);
    store.SetReal(kSection, "InitAz", m_centreAzRad * kDegPerRad);
    store.SetReal(kSection, "InitField", m_fieldDeg);
}

void CCoordinates::Write(CByteWriter& out) const
{
    out.F64(m_centreRaRad);
    out.F64(m_centreDecRad);
    out.F64(m_centreAltRad);
    out.F64(m_centreAzRad);
    out.I32(static_cast<std::int32_t>(m_centring));
    out.I16(static_cast<std::int16_t>(m_zoomLocked));
    out.F64(m_fieldDeg);
    out.I16(m_flipHorizontal);
    out.I16(m_flipVertical);
}

void CCoordinates::Read(CMapFileReader& in)
{
    CByteReader& r = in.Bytes();
    r.F64(m_centreRaRad);
    r.F64(m_centreDecRad);
    if (in.Version() >= 5) {
        r.F64(m_centreAltRad);
        r.F64(m_centreAzRad);
        std::int32_t mode = static_cast<std::int32_t>(m_centring);
        r.I32(mode);
        m_centring = mode == 0 ? Centring::AltAz : Centring::RaDec;
        r.I16Into(m_zoomLocked);
    } else {
        m_centring = Centring::RaDec;
    }
    double field = m_fieldDeg;
    r.F64(field);
    SetFieldDeg(field);
    std::int16_t fh = m_flipHorizontal, fv = m_flipVertical;
    r.I16(fh);
    r.I16(fv);
    SetFlips(fh, fv);
    // Damaged files must not put non-finite values into the projection.
    if (!std::isfinite(m_centreRaRad)) m_centreRaRad = 0.0;
    if (!std::isfinite(m_centreDecRad)) m_centreDecRad = 0.0;
    if (!std::isfinite(m_centreAltRad)) m_centreAltRad = kHalfPi;
    if (!std::isfinite(m_centreAzRad)) m_centreAzRad = kPi;
    m_centreRaRad = mod2pi(m_centreRaRad);
    m_centreAzRad = mod2pi(m_centreAzRad);
    m_centreDecRad = std::clamp(m_centreDecRad, -kHalfPi, kHalfPi);
    m_centreAltRad = std::clamp(m_centreAltRad, -kHalfPi, kHalfPi);
}

void CCoordinates::SetFieldDeg(double fieldDeg)
{
    // Between one arc second and the whole sky around the centre; anything
    // else (including NaN from a damaged file) falls back to level 1's field.
    if (!std::isfinite(fieldDeg) || fieldDeg <= 0.0) fieldDeg = 90.0;
    m_fieldDeg = std::clamp(fieldDeg, 1.0 / 3600.0, 179.0);
    UpdateScales();
}

void CCoordinates::SetFlips(int horizontal, int vertical)
{
    m_flipHorizontal = static_cast<std::int16_t>(horizontal < 0 ? -1 : 1);
    m_flipVertical = static_cast<std::int16_t>(vertical < 0 ? -1 : 1);
}

void CCoordinates::SetCentreRaDec(const CObserverDoc& observer, double raJ2000Rad, double decJ2000Rad)
{
    m_centreRaRad = mod2pi(raJ2000Rad);
    m_centreDecRad = std::clamp(decJ2000Rad, -kHalfPi, kHalfPi);
    double ra = m_centreRaRad, dec = m_centreDecRad;
    CatalogueToDate(observer, ra, dec, Place::Apparent);
    EquatorialToHorizontal(observer, ra, dec, m_centreAltRad, m_centreAzRad);
    UpdateFrameCentre(observer);
}

void CCoordinates::SetCentreAltAz(const CObserverDoc& observer, double altRad, double azRad)
{
    m_centreAltRad = std::clamp(altRad, -kHalfPi, kHalfPi);
    m_centreAzRad = mod2pi(azRad);
    double ra = 0.0, dec = 0.0;
    HorizontalToEquatorial(observer, m_centreAltRad, m_centreAzRad, ra, dec);
    DateToCatalogue(observer, ra, dec);
    m_centreRaRad = ra;
    m_centreDecRad = dec;
    UpdateFrameCentre(observer);
}

void CCoordinates::Update(const CObserverDoc& observer)
{
    if (m_centring == Centring::RaDec)
        SetCentreRaDec(observer, m_centreRaRad, m_centreDecRad);
    else
        SetCentreAltAz(observer, m_centreAltRad, m_centreAzRad);
}

void CCoordinates::UpdateFrameCentre(const CObserverDoc& observer)
{
    if (m_centring == Centring::RaDec) {
        double ra = m_centreRaRad, dec = m_centreDecRad;
        CatalogueToDate(observer, ra, dec, Place::Apparent);
        m_frameLonRad = ra;
        m_frameLatRad = dec;
    } else {
        m_frameLonRad = mod2pi(-m_centreAzRad);
        m_frameLatRad = m_centreAltRad;
    }
    m_frameSinLat = std::sin(m_frameLatRad);
    m_frameCosLat = std::cos(m_frameLatRad);
}

void CCoordinates::SetRotation(double angleRad)
{
    m_rotationRad = std::isfinite(angleRad) ? mod2pi(angleRad) : 0.0;
    m_rotationSin = std::sin(m_rotationRad);
    m_rotationCos = std::cos(m_rotationRad);
    m_rotationDeg = static_cast<int>(std::lround(m_rotationRad * kDegPerRad)) % 360;
}

void CCoordinates::RotateByDegrees(int degrees)
{
    m_rotationRad = mod2pi(m_rotationRad + degrees * kRadPerDeg);
    m_rotationSin = std::sin(m_rotationRad);
    m_rotationCos = std::cos(m_rotationRad);
    m_rotationDeg = ((m_rotationDeg + degrees) % 360 + 360) % 360;
}

void CCoordinates::SetupSurface(int widthPx, int heightPx, double dpiX, double dpiY)
{
    m_width = std::max(widthPx, 1);
    m_height = std::max(heightPx, 1);
    m_aspectXY = (dpiX > 0.0 && dpiY > 0.0) ? dpiX / dpiY : 1.0;
    UpdateScales();
}

void CCoordinates::UpdateScales()
{
    const int w = std::max(m_width, 1), h = std::max(m_height, 1);
    m_screenCx = w / 2;
    m_screenCy = h / 2;
    const double F = m_fieldDeg * kRadPerDeg;
    const double f = (std::cos(F) + 1.0) / (2.0 * std::sin(F));
    m_scaleY = f * h * 0.5;
    m_scaleX = m_scaleY * m_aspectXY;
    // The farthest visible point is a corner of the surface.
    const double u = (w * 0.5) / m_scaleX, v = (h * 0.5) / m_scaleY;
    const double rho = 0.5 * std::hypot(u, v);
    m_visibleRadiusRad = std::min(2.0 * std::atan(rho), kPi * 0.999);
}

bool CCoordinates::ToPlane(double lonRad, double latRad, PlanePoint& p) const
{
    const double dLon = lonRad - m_frameLonRad;
    const double sinLat = std::sin(latRad), cosLat = std::cos(latRad);
    const double cosDLon = std::cos(dLon), sinDLon = std::sin(dLon);
    const double c1 = cosLat * cosDLon;
    const double denom = m_frameCosLat * c1 + sinLat * m_frameSinLat + 1.0;
    if (!(denom > 1e-12)) return false;
    const double k = 1.0 / denom;
    p.x = 2.0 * k * cosLat * sinDLon;
    p.y = 2.0 * k * (m_frameSinLat * c1 - sinLat * m_frameCosLat);
    return true;
}

ScreenPoint CCoordinates::PlaneToScreen(const PlanePoint& p) const
{
    const double s = m_rotationSin, c = m_rotationCos;
    ScreenPoint out;
    out.y = (p.x * s + p.y * c) * m_flipVertical * m_scaleY + m_screenCy;
    out.x = m_screenCx - (p.x * c - p.y * s) * m_flipHorizontal * m_scaleX;
    return out;
}

void CCoordinates::PlaneToPixel(const PlanePoint& p, int& xPx, int& yPx) const
{
    const ScreenPoint s = PlaneToScreen(p);
    const auto clampInt = [](double v) { return static_cast<int>(std::clamp(v, -1e9, 1e9)); };
    xPx = clampInt(s.x);
    yPx = clampInt(s.y);
}

PlanePoint CCoordinates::ScreenToPlane(double xPx, double yPx) const
{
    const double u = (m_screenCx - xPx) / m_scaleX * m_flipHorizontal;
    const double v = (yPx - m_screenCy) / m_scaleY * m_flipVertical;
    const double s = m_rotationSin, c = m_rotationCos;
    return PlanePoint{v * s + u * c, v * c - u * s};
}

namespace {
void InverseStereographic(const PlanePoint& p, double lon0, double lat0, double& lonRad, double& latRad)
{
    const double rho = std::sqrt((p.x * p.x + p.y * p.y) * 0.25);
    if (rho == 0.0) {
        lonRad = lon0;
        latRad = lat0;
        return;
    }
    const double c = 2.0 * std::atan(rho);
    const double theta = std::atan2(p.y, p.x);
    const double sinC = std::sin(c), cosC = std::cos(c);
    const double sinT = std::sin(theta), cosT = std::cos(theta);
    const double sinLat0 = std::sin(lat0), cosLat0 = std::cos(lat0);
    double s = cosC * sinLat0 - sinC * sinT * cosLat0;
    s = std::clamp(s, -1.0, 1.0);
    latRad = kHalfPi - std::acos(s);
    lonRad = mod2pi(lon0 + std::atan2(sinC * cosT, sinC * sinT * sinLat0 + cosC * cosLat0));
}

SkyRegion RegionAbout(double lon0, double lat0, double radius)
{
    SkyRegion r;
    const double rr = radius * 1.05;
    r.latHighRad = lat0 + rr;
    if (r.latHighRad >= kHalfPi) {
        r.latHighRad = kHalfPi;
        r.poleReached = true;
    }
    r.latLowRad = lat0 - rr;
    if (r.latLowRad <= -kHalfPi) {
        r.latLowRad = -kHalfPi;
        r.poleReached = true;
    }
    const double t = std::sin(rr) / std::cos(lat0);
    if (std::fabs(t) < 1.0 && !r.poleReached && rr < kHalfPi) {
        const double d = std::asin(t);
        r.lonLowRad = lon0 - d;
        if (r.lonLowRad < 0.0) r.lonLowRad += kTwoPi;
        r.lonHighRad = lon0 + d;
        if (r.lonHighRad >= kTwoPi) r.lonHighRad -= kTwoPi;
    } else {
        r.lonLowRad = 0.0;
        r.lonHighRad = kTwoPi;
        r.wholeCircle = true;
    }
    r.wraps = r.lonHighRad < r.lonLowRad;
    return r;
}
}  // namespace

void CCoordinates::PlaneToFrame(const PlanePoint& p, double& lonRad, double& latRad) const
{
    InverseStereographic(p, m_frameLonRad, m_frameLatRad, lonRad, latRad);
}

void CCoordinates::PlaneToStoredCentre(const PlanePoint& p, double& lonRad, double& latRad) const
{
    InverseStereographic(p, m_centreRaRad, m_centreDecRad, lonRad, latRad);
}

SkyRegion CCoordinates::FrameRegion() const { return RegionAbout(m_frameLonRad, m_frameLatRad, m_visibleRadiusRad); }

SkyRegion CCoordinates::StoredCentreRegion() const
{
    return RegionAbout(m_centreRaRad, m_centreDecRad, m_visibleRadiusRad);
}

bool CCoordinates::PoleInView() const
{
    const double f = m_fieldDeg * kRadPerDeg * 1.01;
    return m_centreDecRad - f <= -kHalfPi || m_centreDecRad + f >= kHalfPi;
}

}  // namespace orv
