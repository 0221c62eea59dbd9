// The world map of an eclipse written to a file: a picture (PNG, JPEG, BMP)
// or a vector page (PDF, SVG) drawn through the same QPainter code as the
// window and the printer (eclipsemapdraw.h). Qt Gui and Qt Svg only.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "eclipse/eclipsefinder.h"
#include "satellite/groundtrackmap.h"

namespace orv {

// The format follows the file's suffix: ".png", ".jpg"/".jpeg", ".bmp",
// ".pdf", ".svg" (any case). The page or picture is widthPx × heightPx (a
// PDF page of that many points at 150 dots an inch). The file is replaced
// atomically. Nothing on success, else the message to show:
// "Unable to create file\n\"<path>\"" or the unknown suffix named.
std::optional<std::string> ExportEclipseMap(const std::string& path, int widthPx, int heightPx,
                                            const std::vector<sat::WorldOutline>& land, const EclipseEvent& event,
                                            const std::string& title);

}  // namespace orv
