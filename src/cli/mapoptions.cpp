#include "cli/mapoptions.h"

#include <cmath>

#include "cli/options.h"
#include "map/mapview.h"
#include "util/angles.h"

namespace orv::cli {

const std::vector<std::string> kMapOptionNames{"ra", "dec", "alt", "az", "field", "level"};

namespace {
bool AnyOf(const Context& ctx, const std::vector<std::string>& names)
{
    for (const auto& n : names)
        if (ctx.args.Has(n)) return true;
    return false;
}
}  // namespace

bool ApplyMapOptions(const Context& ctx, CMapView& view, MapSource source, std::string& error)
{
    CMapDoc& doc = view.Doc();
    const bool siteGiven = AnyOf(ctx, kSiteOptionNames);
    const bool timeGiven = AnyOf(ctx, kTimeOptionNames);
    if (source == MapSource::NewMap || siteGiven)
        if (!ApplySiteOptions(ctx, doc.observer, error)) return false;
    if (source == MapSource::NewMap || timeGiven)
        if (!ApplyTimeOptions(ctx, doc.observer, error)) return false;

    // Field or level first: entering a level sets how the centre is held.
    if (auto level = ctx.args.GetNumber("level", error)) {
        if (!(*level >= 1 && *level <= 10)) {
            error = "--level takes 1 to 10";
            return false;
        }
        view.SetLevel(static_cast<int>(*level) - 1, CMapView::TakeField::Yes);
    } else if (!error.empty()) {
        return false;
    }
    if (auto field = ctx.args.GetNumber("field", error)) {
        if (!(*field > 0.0 && *field < 180.0)) {
            error = "--field takes degrees between 0 and 180";
            return false;
        }
        view.SetField(*field);
    } else if (!error.empty()) {
        return false;
    }

    const auto ra = ctx.args.Get("ra"), dec = ctx.args.Get("dec");
    const auto alt = ctx.args.Get("alt"), az = ctx.args.Get("az");
    if ((ra || dec) && (alt || az)) {
        error = "give the centre either as --ra/--dec or as --alt/--az";
        return false;
    }
    if (ra || dec) {
        double raRad = 0.0, decRad = 0.0;
        if (!ra || !dec) {
            error = "--ra and --dec go together";
            return false;
        }
        if (!ParseRightAscensionOption("ra", *ra, raRad, error) || !ParseDegreesOption("dec", *dec, 90.0, decRad, error))
            return false;
        view.coordinates.SetCentringMode(Centring::RaDec);
        view.coordinates.SetCentreRaDec(doc.observer, raRad, decRad);
    } else if (alt || az) {
        double altRad = 0.0, azRad = 0.0;
        if (!alt || !az) {
            error = "--alt and --az go together";
            return false;
        }
        if (!ParseDegreesOption("alt", *alt, 90.0, altRad, error) || !ParseDegreesOption("az", *az, 360.0, azRad, error))
            return false;
        azRad = mod2pi(azRad);
        view.coordinates.SetCentringMode(Centring::AltAz);
        view.coordinates.SetCentreAltAz(doc.observer, altRad, azRad);
    } else {
        view.coordinates.Update(doc.observer);
    }
    return true;
}

}  // namespace orv::cli
