// orvane-cli constellation: which constellation holds a point of the sky.

#include "catalog/constellations/constellationfiles.h"
#include "cli/cli.h"
#include "cli/options.h"
#include "observer/observer.h"
#include "util/angles.h"

namespace orv::cli {

namespace {

int Constellation(Context& ctx)
{
    const auto known = OptionNames({}, {"ra", "dec"});
    if (const auto unknown = ctx.args.Unknown(known); !unknown.empty())
        return UsageError(ctx, "unknown option --" + unknown.front());
    const auto raText = ctx.args.Get("ra"), decText = ctx.args.Get("dec");
    if (!raText || !decText) return UsageError(ctx, "constellation needs --ra and --dec");
    double ra = 0.0, dec = 0.0;
    std::string error;
    if (!ParseRightAscensionOption("ra", *raText, ra, error) || !ParseDegreesOption("dec", *decText, 90.0, dec, error))
        return UsageError(ctx, error);

    CConstellationCatalogue catalogue;
    catalogue.LoadNames();
    if (!catalogue.LoadBoundaries()) {
        const std::string message = "The constellation boundaries (data\\conbound.dat) are not installed.";
        if (ctx.json)
            PrintJson(ctx.out, QJsonObject{{"error", QString::fromStdString(message)}});
        else
            ctx.err << message << '\n';
        return 1;
    }
    // The boundaries are Delporte's, on the B1875.0 equator: the J2000 point
    // is precessed there and looked up in Roman's strips.
    const CObserverDoc observer;
    double raB1875 = 0.0, decB1875 = 0.0;
    J2000ToB1875(observer, ra, dec, raB1875, decB1875);
    const int c = ConstellationOfB1875(catalogue.Strips(), raB1875, decB1875);
    if (c < 0) {
        ctx.err << "No constellation holds this point: the boundary file is damaged.\n";
        return 1;
    }
    const std::string name = catalogue.Name(c), abbreviation = catalogue.Abbreviation(c),
                      genitive = catalogue.Genitive(c);
    if (ctx.json) {
        PrintJson(ctx.out, QJsonObject{{"constellation", QString::fromStdString(name)},
                                       {"abbreviation", QString::fromStdString(abbreviation)},
                                       {"genitive", QString::fromStdString(genitive)},
                                       {"number", c},
                                       {"raJ2000Deg", mod2pi(ra) * kDegPerRad},
                                       {"decJ2000Deg", dec * kDegPerRad},
                                       {"raB1875Deg", raB1875 * kDegPerRad},
                                       {"decB1875Deg", decB1875 * kDegPerRad}});
        return 0;
    }
    ctx.out << name << " (" << abbreviation << ", genitive " << genitive << ")\n"
            << "B1875.0  " << FormatHms(raB1875, 1) << "  " << FormatDms(decB1875, 0, true) << '\n';
    return 0;
}

constexpr const char* kUsage =
    "orvane-cli constellation --ra HOURS --dec DEG\n"
    "  the constellation holding the J2000 position (IAU boundaries of 1930, Roman's method)";

}  // namespace

ORV_CLI_COMMAND("constellation", "the constellation holding a position", kUsage, Constellation);

}  // namespace orv::cli
