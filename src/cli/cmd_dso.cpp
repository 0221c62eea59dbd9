// orvane-cli dso: everything the deep-sky catalogues hold about one object.
// orvane-cli dsos: the deep-sky objects of a field, filtered as a chart
// filters them.
#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <sstream>

#include "catalog/deepsky/deepskyfilter.h"
#include "catalog/deepsky/deepskysource.h"
#include "cli/cli.h"
#include "cli/options.h"
#include "cli/tableprinter.h"
#include "util/angles.h"

namespace orv::cli {

namespace {

const char* kNoCatalogue =
    "the deep-sky catalogues are not in the data folder (run tools/build-data.sh, or orvane-databuild --deepsky)";

CDeepSkyCatalogues& Catalogues()
{
    static CDeepSkyCatalogues catalogues;
    static const bool opened = catalogues.Open();
    (void)opened;
    return catalogues;
}

QJsonObject ObjectJson(const DeepSkyObject& o, const DeepSkyTexts& t)
{
    QJsonObject j;
    j["designation"] = QString::fromStdString(t.designation);
    if (!t.messier.empty()) j["messier"] = QString::fromStdString(t.messier);
    if (!t.caldwell.empty()) j["caldwell"] = QString::fromStdString(t.caldwell);
    if (!t.names.empty()) j["name"] = QString::fromStdString(t.CommonName());
    QJsonArray names;
    std::size_t at = 0;
    while (at < t.names.size()) {
        const std::size_t end = std::min(t.names.find("; ", at), t.names.size());
        names.append(QString::fromStdString(t.names.substr(at, end - at)));
        at = end + 2;
    }
    if (!names.isEmpty()) j["names"] = names;
    j["typeCode"] = static_cast<int>(o.type);
    j["type"] = QString::fromStdString(std::string(ObjectTypeName(o.type)));
    if (o.catalogue == DeepSkyCatalogueId::NgcIc && o.ngcType != 0)
        j["catalogueType"] = QString::fromStdString(std::string(NgcTypeWords(o.ngcType)));
    if (!t.morphology.empty()) j["morphology"] = QString::fromStdString(t.morphology);
    if (o.HasMagnitude()) j["magnitude"] = o.magCenti / 100.0;
    if (o.majorArcmin > 0.0f) j["majorArcmin"] = std::round(o.majorArcmin * 10.0) / 10.0;
    if (o.minorArcmin > 0.0f) j["minorArcmin"] = std::round(o.minorArcmin * 10.0) / 10.0;
    if (o.paDeg != deepsky::kNoPositionAngle) j["paDeg"] = o.paDeg;
    j["raJ2000Deg"] = o.raJ2000Rad * kDegPerRad;
    j["decJ2000Deg"] = o.decJ2000Rad * kDegPerRad;
    j["ra"] = QString::fromStdString(FormatHms(o.raJ2000Rad, 1));
    j["dec"] = QString::fromStdString(FormatDms(o.decJ2000Rad, 0));
    if (!t.otherIds.empty()) j["otherIds"] = QString::fromStdString(t.otherIds);
    return j;
}

int RunDso(Context& ctx)
{
    if (const auto unknown = ctx.args.Unknown(OptionNames({&kGlobalOptionNames})); !unknown.empty())
        return UsageError(ctx, "unknown option --" + unknown.front());
    std::string query;
    for (const auto& w : ctx.args.Positional()) query += (query.empty() ? "" : " ") + w;
    if (query.empty()) return UsageError(ctx, "dso needs a name, e.g. \"M 42\", \"NGC 7000\" or \"Orion Nebula\"");
    const CDeepSkyCatalogues& cats = Catalogues();
    if (!cats.AnyOpen()) return Fail(ctx, kNoCatalogue);
    const auto found = ResolveDeepSkyName(cats, query);
    if (found.empty()) return Fail(ctx, "no deep-sky object \"" + query + "\" in the catalogues");
    if (ctx.json) {
        QJsonArray list;
        for (const auto& [o, t] : found) list.append(ObjectJson(o, t));
        QJsonObject out;
        out["query"] = QString::fromStdString(query);
        out["objects"] = list;
        PrintJson(ctx.out, out);
        return 0;
    }
    for (const auto& [o, t] : found) ctx.out << DeepSkyTitle(t) << DeepSkyReadout(o, t) << "\n";
    return 0;
}

// "galaxy,open-cluster" → the "ObjectTypes" bits; false for an unknown word.
bool ParseTypes(const std::string& text, int& bits, std::string& error)
{
    static constexpr std::pair<std::string_view, ObjectType> kWords[] = {
        {"galaxy", ObjectType::Galaxy},
        {"cluster-of-galaxies", ObjectType::GalaxyCluster},
        {"open-cluster", ObjectType::OpenCluster},
        {"globular-cluster", ObjectType::GlobularCluster},
        {"planetary-nebula", ObjectType::PlanetaryNebula},
        {"bright-nebula", ObjectType::BrightNebula},
        {"dark-nebula", ObjectType::DarkNebula},
        {"star", ObjectType::Star},
        {"supernova-remnant", ObjectType::SupernovaRemnant},
        {"quasar", ObjectType::Quasar},
        {"radio-source", ObjectType::RadioSource},
        {"all", ObjectType::All}};
    bits = 0;
    std::stringstream in(text);
    std::string word;
    while (std::getline(in, word, ',')) {
        const auto it = std::find_if(std::begin(kWords), std::end(kWords), [&](const auto& w) { return w.first == word; });
        if (it == std::end(kWords)) {
            error = "--types: unknown type \"" + word + "\"";
            return false;
        }
        bits |= 1 << static_cast<int>(it->second);
    }
    return true;
}

int RunDsos(Context& ctx)
{
    const auto known = OptionNames({&kGlobalOptionNames},
                                   {"ra", "dec", "radius", "mag", "min-size", "types", "catalogues", "name"});
    if (const auto unknown = ctx.args.Unknown(known); !unknown.empty())
        return UsageError(ctx, "unknown option --" + unknown.front());
    const auto raText = ctx.args.Get("ra");
    const auto decText = ctx.args.Get("dec");
    if (!raText || !decText) return UsageError(ctx, "dsos needs --ra and --dec (the field's centre, J2000)");
    std::string error;
    double centreRa = 0.0, centreDec = 0.0;
    if (!ParseRightAscensionOption("ra", *raText, centreRa, error) ||
        !ParseDegreesOption("dec", *decText, 90.0, centreDec, error))
        return UsageError(ctx, "--ra or --dec is not an angle: " + error);
    const double radiusDeg = ctx.args.GetNumber("radius", error).value_or(1.0);
    const auto mag = ctx.args.GetNumber("mag", error);
    const auto minSize = ctx.args.GetNumber("min-size", error);
    if (!error.empty()) return UsageError(ctx, error);
    if (!(radiusDeg > 0.0 && radiusDeg <= 90.0)) return UsageError(ctx, "--radius must lie in (0, 90] degrees");
    // The deep-sky filter dialog's limits.
    if (mag && !(*mag >= -2.0 && *mag <= 30.0)) return UsageError(ctx, "--mag takes a magnitude from -2 to 30");
    if (minSize && !(*minSize >= 0.0 && *minSize <= 32767.0 / 60.0))
        return UsageError(ctx, "--min-size takes arcminutes from 0 to 546");

    // The chart's own filters, with every catalogue at its level unless
    // --catalogues names some.
    CDeepSkySettings settings;
    settings.objectTypes = 1;
    if (const auto types = ctx.args.Get("types"); types && !ParseTypes(*types, settings.objectTypes, error))
        return UsageError(ctx, error);
    if (mag) {
        settings.dsMagnitude = 1;
        settings.magLimit = static_cast<int>(std::lround(*mag * 100.0));
    }
    if (minSize) {
        settings.dsSize = 1;
        settings.dsSizeLimit = static_cast<int>(std::lround(*minSize * 60.0));
    }
    settings.nameFilter = ctx.args.Get("name").value_or("");
    DeepSkyLevelState level;
    level.ngcic = level.sac = level.leda = level.strasbourg = level.dark = true;
    if (const auto list = ctx.args.Get("catalogues")) {
        level.ngcic = level.sac = level.leda = level.strasbourg = false;
        std::stringstream in(*list);
        std::string word;
        while (std::getline(in, word, ',')) {
            if (word == "ngcic") level.ngcic = true;
            else if (word == "sac") level.sac = true;
            else if (word == "leda") level.leda = true;
            else if (word == "pn") level.strasbourg = true;
            else return UsageError(ctx, "--catalogues: unknown catalogue \"" + word + "\" (ngcic, sac, leda, pn)");
        }
    }
    const CDeepSkyFilter filter(settings, level);
    const CDeepSkyCatalogues& cats = Catalogues();
    if (!cats.AnyOpen()) return Fail(ctx, kNoCatalogue);

    const double radiusRad = radiusDeg * kRadPerDeg;
    const bool ngcShown = level.ngcic && cats.IsOpen(DeepSkyCatalogueId::NgcIc);
    std::vector<VisibleDeepSkyRow> rows;
    std::vector<DeepSkyObject> gathered;
    DeepSkyTexts texts;
    for (const DeepSkyCatalogueId c : {DeepSkyCatalogueId::NgcIc, DeepSkyCatalogueId::Sac, DeepSkyCatalogueId::Leda,
                                       DeepSkyCatalogueId::Strasbourg}) {
        if (!filter.CatalogueShown(c)) continue;
        gathered.clear();
        cats.Gather(c, centreRa, centreDec, radiusRad, gathered);
        for (const DeepSkyObject& o : gathered) {
            // The field is the circle of the radius about the centre; an
            // object the NGC/IC holds is listed once.
            if (AngularDistance(centreRa, centreDec, o.raJ2000Rad, o.decJ2000Rad) > radiusRad) continue;
            if ((ngcShown && o.inNgcIc) || !filter.Passes(o) || !cats.Texts(c, o.record, texts) ||
                !filter.NamePasses(texts))
                continue;
            rows.push_back(DeepSkyRow(o, texts));
        }
    }
    std::stable_sort(rows.begin(), rows.end(),
                     [](const VisibleDeepSkyRow& a, const VisibleDeepSkyRow& b) { return a.magCenti < b.magCenti; });
    ResultTable table = VisibleDeepSkyTable(rows);
    table.title = "Deep-sky objects within " + ShortestNumberText(radiusDeg) + "° of " + FormatHms(centreRa, 1) + " " +
                  FormatDms(centreDec, 0) + " (J2000)";
    QJsonObject extra;
    extra["raJ2000Deg"] = centreRa * kDegPerRad;
    extra["decJ2000Deg"] = centreDec * kDegPerRad;
    extra["radiusDeg"] = radiusDeg;
    extra["count"] = static_cast<int>(rows.size());
    PrintTable(ctx, table, extra);
    return 0;
}

}  // namespace

ORV_CLI_COMMAND("dso", "everything the deep-sky catalogues hold about one object",
                "  NAME            \"M 42\", \"M42\", \"NGC 7000\", \"IC 434\", \"C 14\", \"LEDA 2557\", \"UGC 454\",\n"
                "                  \"PN G054.1-12.1\" or a common name such as \"Orion Nebula\"\n"
                "  --json          machine-readable output",
                RunDso);

ORV_CLI_COMMAND("dsos", "deep-sky objects of a field, filtered as a chart filters them",
                "  --ra HOURS      field centre, J2000 (12h30m, 12:30:49, 12.514; degrees as 187.7d)\n"
                "  --dec DEG       field centre, J2000\n"
                "  --radius DEG    field radius (default 1)\n"
                "  --mag MAG       faintest magnitude (objects without a magnitude are kept)\n"
                "  --min-size ARCMIN  smallest major axis (objects without a size are kept)\n"
                "  --types LIST    galaxy, cluster-of-galaxies, open-cluster, globular-cluster, planetary-nebula,\n"
                "                  bright-nebula, dark-nebula, star, supernova-remnant, quasar, radio-source, all\n"
                "  --catalogues LIST  ngcic, sac, leda, pn (default all)\n"
                "  --name PATTERN  name filter: '*' and '?' wildcards, patterns separated by ';'\n"
                "  --json, --csv   machine-readable output",
                RunDsos);

}  // namespace orv::cli
