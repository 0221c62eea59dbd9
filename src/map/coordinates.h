// CCoordinates: the chart's projection — the `Coordinates` block of a map.
//
// A sky position in the chart's frame (right ascension and declination of
// date, or the horizon frame) is projected stereographically about the frame
// centre onto a plane, then rotated, flipped and scaled to pixels.
//
// Frames and centres:
//   - The stored centre right ascension and declination are J2000 (catalogue)
//     values, so a map of an object stays on it when its date changes by
//     centuries; the stored altitude and azimuth are apparent (refracted)
//     values at the map's site and time.
//   - With Centring::RaDec the chart frame is the equator of date and the
//     frame centre is the stored centre brought to the date (precession).
//   - With Centring::AltAz the chart frame is the horizon: frame longitude is
//     −azimuth (so that, facing south, east is on the left as in the sky) and
//     frame latitude is altitude.
//   - The plane's y axis points south (down on an unrotated chart), x grows
//     with frame longitude; pixel x grows to the right, so longitude grows to
//     the left as on the sky.
//   - The field F (degrees) is the angular distance from the centre to the top
//     and bottom edges, not the full height.
#pragma once

#include <cstdint>

#include "map/levels.h"
#include "util/angles.h"

namespace orv {

class CObserverDoc;
class CByteWriter;
class CMapFileReader;
class CSettingsStore;

// Latitude and longitude ranges that may be visible, for catalogue region
// selection. With `wraps` the longitude range runs from lonLow up through 2π
// and on from 0 to lonHigh.
struct SkyRegion {
    double latLowRad = 0.0;
    double latHighRad = 0.0;
    double lonLowRad = 0.0;
    double lonHighRad = 0.0;
    bool poleReached = false;
    bool wraps = false;
    bool wholeCircle = false;
};

struct PlanePoint {
    double x = 0.0;
    double y = 0.0;
};

struct ScreenPoint {
    double x = 0.0;
    double y = 0.0;
};

class CCoordinates {
public:
    CCoordinates();

    // --- Stored settings (section "Coordinates" and the map file) -----------
    // Defaults: "InitAlt", "InitAz" (degrees), "InitField" (degrees, "%lf"),
    // "FlipHorizontal", "FlipVertical" (+1/−1), "ZoomLocked".
    void LoadSettings(const CSettingsStore& store);
    void SaveSettings(CSettingsStore& store) const;
    // The map file block: centre RA, Dec, Alt, Az (f64), centring mode (i32),
    // ZoomLocked (i16), field (f64), flips (i16 each). Files older than
    // version 5 carry no Alt, Az, centring mode and ZoomLocked.
    void Write(CByteWriter& out) const;
    void Read(CMapFileReader& in);

    double CentreRaJ2000Rad() const { return m_centreRaRad; }
    double CentreDecJ2000Rad() const { return m_centreDecRad; }
    double CentreAltRad() const { return m_centreAltRad; }
    double CentreAzRad() const { return m_centreAzRad; }
    double FieldDeg() const { return m_fieldDeg; }
    void SetFieldDeg(double fieldDeg);
    Centring CentringMode() const { return m_centring; }
    void SetCentringMode(Centring mode) { m_centring = mode; }
    bool ZoomLocked() const { return m_zoomLocked != 0; }
    void SetZoomLocked(bool locked) { m_zoomLocked = locked ? 1 : 0; }
    int FlipHorizontal() const { return m_flipHorizontal; }
    int FlipVertical() const { return m_flipVertical; }
    void SetFlips(int horizontal, int vertical);

    // --- Centre ----------------------------------------------------------------
    // Stores the J2000 centre, derives the apparent altitude and azimuth for
    // the observer's site and time and the frame centre.
    void SetCentreRaDec(const CObserverDoc& observer, double raJ2000Rad, double decJ2000Rad);
    // Stores the apparent altitude and azimuth, derives the J2000 centre and
    // the frame centre.
    void SetCentreAltAz(const CObserverDoc& observer, double altRad, double azRad);
    // After a change of the observer's site or time: keeps what the centring
    // mode holds fixed and derives the rest.
    void Update(const CObserverDoc& observer);

    double FrameCentreLonRad() const { return m_frameLonRad; }
    double FrameCentreLatRad() const { return m_frameLatRad; }

    // --- Rotation --------------------------------------------------------------
    void SetRotation(double angleRad);
    void RotateByDegrees(int degrees);
    double RotationRad() const { return m_rotationRad; }
    int RotationWholeDeg() const { return m_rotationDeg; }

    // --- Drawing surface ---------------------------------------------------------
    // Screen centre (integer halves), scales from the field, and the visible
    // radius. dpiX/dpiY give the pixels' aspect (square pixels: equal).
    void SetupSurface(int widthPx, int heightPx, double dpiX = 96.0, double dpiY = 96.0);
    int WidthPx() const { return m_width; }
    int HeightPx() const { return m_height; }
    int ScreenCentreX() const { return m_screenCx; }
    int ScreenCentreY() const { return m_screenCy; }
    double ScaleX() const { return m_scaleX; }
    double ScaleY() const { return m_scaleY; }
    // Angular radius from the centre to the farthest corner of the surface.
    double VisibleRadiusRad() const { return m_visibleRadiusRad; }

    // --- Projection ------------------------------------------------------------
    // Stereographic projection about the frame centre. False (and the plane
    // point untouched) only at the antipode of the centre, where the plane
    // point is at infinity.
    bool ToPlane(double lonRad, double latRad, PlanePoint& p) const;
    ScreenPoint PlaneToScreen(const PlanePoint& p) const;
    // Truncated to whole pixels, as hit-testing and the status read-out use.
    void PlaneToPixel(const PlanePoint& p, int& xPx, int& yPx) const;
    PlanePoint ScreenToPlane(double xPx, double yPx) const;
    // Inverse projection about the frame centre (the chart's frame) or about
    // the stored J2000 centre.
    void PlaneToFrame(const PlanePoint& p, double& lonRad, double& latRad) const;
    void PlaneToStoredCentre(const PlanePoint& p, double& lonRad, double& latRad) const;

    // --- Regions -------------------------------------------------------------
    // Ranges that may be visible around the frame centre, widened by 5 %.
    SkyRegion FrameRegion() const;
    // The same about the stored J2000 centre: the region in catalogue
    // coordinates that star and deep-sky layers select with.
    SkyRegion StoredCentreRegion() const;
    // Whether a celestial pole is within the field (1 % margin) of the
    // stored centre's declination.
    bool PoleInView() const;

private:
    void UpdateFrameCentre(const CObserverDoc& observer);
    void UpdateScales();

    // Stored.
    double m_centreRaRad = 0.0;
    double m_centreDecRad = 0.0;
    double m_centreAltRad = kHalfPi;
    double m_centreAzRad = kPi;
    double m_fieldDeg = 90.0;
    Centring m_centring = Centring::AltAz;
    double m_rotationRad = 0.0;
    double m_rotationSin = 0.0;
    double m_rotationCos = 1.0;
    std::int32_t m_zoomLocked = 1;
    std::int16_t m_flipHorizontal = 1;
    std::int16_t m_flipVertical = 1;

    // Derived.
    double m_frameLonRad = 0.0;
    double m_frameLatRad = 0.0;
    double m_frameSinLat = 0.0;
    double m_frameCosLat = 1.0;
    double m_visibleRadiusRad = 1.0;
    int m_rotationDeg = 0;
    int m_screenCx = 0;
    int m_screenCy = 0;
    double m_scaleX = 1.0;
    double m_scaleY = 1.0;
    int m_width = 0;
    int m_height = 0;
    double m_aspectXY = 1.0;  // dpiX / dpiY

};

}  // namespace orv
