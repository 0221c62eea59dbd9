// orvane-cli find: any object of any catalogue the program has, by name or
// number, through the same registry as the desktop program's find box.

#include <cmath>
#include <iostream>

#include "cli/chartassembly.h"
#include "cli/cli.h"
#include "cli/options.h"
#include "map/skyframes.h"
#include "observer/observer.h"
#include "util/angles.h"

namespace orv::cli {

namespace {

int RunFind(Context& ctx)
{
    const auto known = OptionNames({&kSiteOptionNames, &kTimeOptionNames});
    if (const auto unknown = ctx.args.Unknown(known); !unknown.empty())
        return UsageError(ctx, "unknown option --" + unknown.front());
    std::string query;
    for (const std::string& w : ctx.args.Positional()) query += (query.empty() ? "" : " ") + w;
    if (query.empty()) return UsageError(ctx, "find needs a name or number, e.g. Sirius, \"alpha CMa\", \"HIP 32349\"");
    CObserverDoc observer;
    observer.LoadSettings(ctx.settings);
    std::string error;
    if (!ApplySiteOptions(ctx, observer, error) || !ApplyTimeOptions(ctx, observer, error))
        return UsageError(ctx, error);

    const CSkyObjectRegistry& objects = ChartComponents().objects;
    const FindResult found = objects.Resolve(query, observer);
    if (found.status != FindStatus::Found) return Fail(ctx, found.message);
    const SkyObjectMatch& m = found.matches.front();
    const ISkyObjectSource* source = objects.Source(m.source);
    DescribeRequest request;
    request.jdUT = observer.JulianDate();
    request.jdTT = observer.JulianDateTDT();
    request.style = ~0u;  // names shown, constellations abbreviated
    request.hasSite = true;
    request.latitudeRad = observer.LatitudeRad();
    request.longitudeRad = observer.LongitudeRad();
    request.heightM = observer.HeightM();
    request.localOffsetHours = observer.LocalOffsetHours();
    const auto description = source != nullptr ? source->Describe(m.key, request) : std::nullopt;

    // The apparent place of date and where it stands in the sky of the site.
    double raDate = m.raJ2000Rad, decDate = m.decJ2000Rad;
    CatalogueToDate(observer, raDate, decDate);
    double altRad = 0.0, azRad = 0.0;
    EquatorialToHorizontal(observer, raDate, decDate, altRad, azRad, Refraction::Apply);

    if (ctx.json) {
        QJsonObject o;
        o["query"] = QString::fromStdString(query);
        o["designation"] = QString::fromStdString(m.designation);
        o["type"] = QString::fromUtf8(ObjectTypeName(m.type).data(), static_cast<int>(ObjectTypeName(m.type).size()));
        o["typeCode"] = static_cast<int>(m.type);
        if (source != nullptr) o["catalogue"] = QString::fromUtf8(source->Name().data(), static_cast<int>(source->Name().size()));
        if (m.magnitude) o["magnitude"] = *m.magnitude;
        o["jdUT"] = observer.JulianDate();
        o["raJ2000Deg"] = m.raJ2000Rad / kRadPerDeg;
        o["decJ2000Deg"] = m.decJ2000Rad / kRadPerDeg;
        o["raDateDeg"] = raDate / kRadPerDeg;
        o["decDateDeg"] = decDate / kRadPerDeg;
        o["altitudeDeg"] = altRad / kRadPerDeg;
        o["azimuthDeg"] = azRad / kRadPerDeg;
        if (description) o["information"] = QString::fromStdString(description->information);
        PrintJson(ctx.out, o);
        return 0;
    }
    // Objects without a type code of their own (a constellation) show only
    // their catalogue.
    std::string what = m.type != ObjectType::Unknown ? std::string(ObjectTypeName(m.type)) : std::string();
    if (source != nullptr) what += (what.empty() ? "" : ", ") + std::string(source->Name());
    ctx.out << m.designation << (what.empty() ? "" : "  (" + what + ")") << "\n";
    ctx.out << "J2000 place at the date:  RA " << FormatHms(m.raJ2000Rad, 1) << "  Dec " << FormatDms(m.decJ2000Rad, 0)
            << "\n";
    ctx.out << "Apparent place of date:   RA " << FormatHms(raDate, 1) << "  Dec " << FormatDms(decDate, 0) << "\n";
    ctx.out << "Altitude " << FormatDms(altRad, 0) << "  azimuth " << FormatDms(azRad, 0) << " (refracted)\n";
    if (description) ctx.out << "\n" << description->information << "\n";
    return 0;
}

constexpr const char* kFindUsage =
    "orvane-cli find TEXT [site and time options]\n"
    "  Finds an object by name or number in every catalogue installed (\"Sirius\", \"alpha CMa\", \"HIP 32349\",\n"
    "  \"HD 48915\", \"TYC 5949-2777-1\") and gives its place at the date and its identify read-out.\n"
    "  Text that no catalogue knows is refused with the list of what was searched.";

}  // namespace

ORV_CLI_COMMAND("find", "find any object by name or number, with its place at a date", kFindUsage, RunFind);

}  // namespace orv::cli
