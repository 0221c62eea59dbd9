// The world map of an eclipse, drawn on the satellite ground-track page's
// map (its projection, land, graticule and night shading): for a solar
// eclipse the central line, the umbral and penumbral limits and greatest
// eclipse, with night at greatest eclipse; for a lunar eclipse the
// hemisphere where the Moon is up at greatest eclipse, shaded and outlined
// (no night shading there: it would nearly coincide), and the point with the
// Moon in the zenith. Qt Gui only: a window, the printer and an image
// export all draw through these.
#pragma once

#include <QPainter>
#include <QRectF>

#include <string>
#include <vector>

#include "eclipse/eclipsepaths.h"
#include "satellite/groundtrackmap.h"

namespace orv {

void DrawSolarEclipseMap(QPainter& painter, const QRectF& area, const std::vector<sat::WorldOutline>& land,
                         const SolarEclipsePaths& paths, const std::string& title);
void DrawLunarEclipseMap(QPainter& painter, const QRectF& area, const std::vector<sat::WorldOutline>& land,
                         const LunarVisibilityRegion& region, const std::string& title);

// Everything for one eclipse computed and drawn: the solar paths or the
// lunar region of `event`. False when the ephemeris is missing.
bool DrawEclipseMap(QPainter& painter, const QRectF& area, const std::vector<sat::WorldOutline>& land,
                    const EclipseEvent& event, const std::string& title);

}  // namespace orv
