#include "solarsystem/bodypathfile.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <sstream>

#include "app/strings.h"
#include "solarsystem/planets.h"

namespace orv {

namespace {

constexpr std::string_view kHeader = "Orvane planet paths 1";
constexpr std::size_t kMaxPointsPerPath = 100000;

// A whole field as a number ("nan" included: a magnitude may be unknown).
bool ToDouble(const std::string& field, double& value)
{
    char* end = nullptr;
    value = std::strtod(field.c_str(), &end);
    return !field.empty() && end == field.c_str() + field.size();
}

}  // namespace

std::string BodyPathsFilePath(const std::string& mapFilePath) { return mapFilePath + ".paths"; }

std::string FormatBodyPaths(const std::vector<BodyPath>& paths)
{
    std::string text(kHeader);
    text += '\n';
    char line[256];
    for (const BodyPath& path : paths) {
        std::snprintf(line, sizeof line, "path %s %.17g %.17g %zu\n", std::string(BodyName(path.body)).c_str(),
                      path.tickStepDays, path.localOffsetHours, path.points.size());
        text += line;
        for (const BodyPathPoint& p : path.points) {
            std::snprintf(line, sizeof line, "%.17g %.17g %.17g %.17g %d\n", p.jdUT, p.raJ2000Rad, p.decJ2000Rad,
                          p.magnitude, p.tick ? 1 : 0);
            text += line;
        }
    }
    return text;
}

BodyPathsReadResult ParseBodyPaths(std::string_view text)
{
    BodyPathsReadResult result;
    std::istringstream in{std::string(text)};
    std::string line;
    int lineNumber = 0;
    auto fail = [&](const std::string& why) {
        result.ok = false;
        result.paths.clear();
        result.errorLine = lineNumber;
        result.error = why;
        return result;
    };
    if (!std::getline(in, line) || (++lineNumber, line != kHeader)) {
        lineNumber = 1;
        return fail("not a planet paths file (the first line must read \"" + std::string(kHeader) + "\")");
    }
    while (std::getline(in, line)) {
        ++lineNumber;
        if (line.empty()) continue;
        std::istringstream fields(line);
        std::string word, name;
        double step = 0.0, offset = 0.0;
        std::size_t count = 0;
        if (!(fields >> word >> name >> step >> offset >> count) || word != "path")
            return fail("expected \"path NAME STEP OFFSET COUNT\": \"" + line + "\"");
        const std::optional<int> body = BodyFromName(name);
        if (!body) return fail("unknown body \"" + name + "\"");
        if (!std::isfinite(step) || !(step > 0.0) || !std::isfinite(offset) || std::fabs(offset) > 24.0)
            return fail("implausible step or time offset: \"" + line + "\"");
        if (count > kMaxPointsPerPath) return fail("too many points (" + std::to_string(count) + ")");
        BodyPath path;
        path.body = *body;
        path.tickStepDays = step;
        path.localOffsetHours = offset;
        for (std::size_t k = 0; k < count; ++k) {
            if (!std::getline(in, line)) return fail("the file ends inside a path (" + std::to_string(k) + " of " +
                                                     std::to_string(count) + " points)");
            ++lineNumber;
            std::istringstream point(line);
            BodyPathPoint p;
            std::string f[5];
            const bool five = static_cast<bool>(point >> f[0] >> f[1] >> f[2] >> f[3] >> f[4]);
            const bool parsed = five && ToDouble(f[0], p.jdUT) && ToDouble(f[1], p.raJ2000Rad) &&
                                ToDouble(f[2], p.decJ2000Rad) && ToDouble(f[3], p.magnitude);
            const int tick = parsed && (f[4] == "0" || f[4] == "1") ? f[4][0] - '0' : -1;
            if (!parsed || tick < 0 ||
                !std::isfinite(p.jdUT) || !std::isfinite(p.raJ2000Rad) || !std::isfinite(p.decJ2000Rad) ||
                std::fabs(p.decJ2000Rad) > 1.5707963267948966 + 1e-12)
                return fail("expected \"JD RA DEC MAG TICK\": \"" + line + "\"");
            p.tick = tick == 1;
            path.points.push_back(p);
        }
        result.paths.push_back(std::move(path));
    }
    result.ok = true;
    return result;
}

}  // namespace orv
