#include "eclipse/eclipsesearch.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <thread>

#include "observer/observer.h"
#include "util/atomicfile.h"
#include "util/datapath.h"
#include "util/settingsstore.h"

namespace orv {

namespace {

constexpr double kRadToDeg = 57.29577951308232;
constexpr int kFirstTableYear = -1999;
constexpr int kLastTableYear = 3000;

std::string YearText(int year)
{
    char text[24];
    if (year < 1)
        std::snprintf(text, sizeof text, "%1d BC", 1 - year);
    else
        std::snprintf(text, sizeof text, "%1d AD", year);
    return text;
}

std::string UtTimeText(double jdUT)
{
    const CivilDateTime c = CivilFromJulianDate(jdUT);
    char text[32];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d", c.hour, c.minute, static_cast<int>(c.second));
    return text;
}

}  // namespace

void EclipseSearchSettings::Load(const CSettingsStore& store)
{
    // Years beyond the tables' span fall back to the defaults: a damaged
    // file must not start a search of millions of years.
    const auto year = [&](const char* key, int defaultYear) {
        const int y = store.GetInt("EclipseSearch", key, defaultYear);
        return y >= kFirstTableYear && y <= kLastTableYear ? y : defaultYear;
    };
    startYear = year("StartYear", startYear);
    endYear = year("EndYear", endYear);
    displayOption = store.GetInt("EclipseSearch", "DisplayOption", displayOption);
    solar = store.GetInt("EclipseSearch", "Solar", solar ? 1 : 0) != 0;
    lunar = store.GetInt("EclipseSearch", "Lunar", lunar ? 1 : 0) != 0;
}

void EclipseSearchSettings::Save(CSettingsStore& store) const
{
    store.SetInt("EclipseSearch", "StartYear", startYear);
    store.SetInt("EclipseSearch", "EndYear", endYear);
    store.SetInt("EclipseSearch", "DisplayOption", displayOption);
    store.SetInt("EclipseSearch", "Solar", solar ? 1 : 0);
    store.SetInt("EclipseSearch", "Lunar", lunar ? 1 : 0);
}

std::optional<std::string> ValidateEclipseSearch(const EclipseSearchSettings& s)
{
    if (!s.solar && !s.lunar) return "You must select at least one of the solar\nor lunar eclipse search options.";
    if (s.endYear < kFirstTableYear || s.endYear > kLastTableYear)
        return "Please enter an end year between 2000 BC and 3000 AD.";
    // A start year before the tables would scan nothing more than from their
    // first year; one after the end year is the same mistake as below.
    if (s.endYear <= s.startYear || s.startYear < kFirstTableYear) return "The end year must be after the start year.";
    return std::nullopt;
}

int EclipseSearchProgressRange(const EclipseSearchSettings& s)
{
    // In 64 bits: years from a damaged settings file must not overflow.
    const long long years =
        std::clamp(static_cast<long long>(s.endYear) - s.startYear + 1, 0LL, 1LL + kLastTableYear - kFirstTableYear);
    return static_cast<int>(s.solar && s.lunar ? 2 * years : years);
}

namespace {

// One eclipse of the tables at the site: screened with the quick sketch of
// the Sun and Moon first (most eclipses are plainly out of sight), then the
// exact local circumstances. Nothing when the eclipse is left out.
std::optional<EclipseSearchResult> EvaluateForSite(const EclipseRecord& r, EclipseKind kind,
                                                   const EclipseSearchSettings& settings, const EclipseSite& site,
                                                   EclipseVisibility visibility)
{
    EclipseSearchResult result;
    result.record = r;
    result.kind = kind;
    const double jdTT = RecordJulianDateTT(r);
    const bool fromSite = visibility == EclipseVisibility::FromSite;
    if (kind == EclipseKind::Solar) {
        if (settings.displayOption == kEclipseDisplayNoPartialSolar && r.type == 'P') return std::nullopt;
        if (fromSite && SolarEclipseSurelyUnseen(jdTT, site)) return std::nullopt;
        BesselianElements elements;
        if (!ComputeBesselianElements(jdTT, elements)) return std::nullopt;
        result.solar = SolarLocal(elements, site);
        if (fromSite && !(result.solar.eclipsed && result.solar.visible)) return std::nullopt;
    } else {
        if (fromSite && LunarEclipseSurelyUnseen(jdTT, site)) return std::nullopt;
        const auto lunar = LunarLocal(jdTT, site);
        if (lunar) result.lunar = *lunar;
        if (fromSite && !(lunar && lunar->visible)) return std::nullopt;
    }
    return result;
}

}  // namespace

EclipseSearchOutcome RunEclipseSearch(const EclipseSearchSettings& settings, const EclipseSite& site,
                                      EclipseVisibility visibility, const EclipseSearchProgressFn& progress,
                                      const std::string& scratchPath)
{
    EclipseSearchOutcome outcome;
    if (!scratchPath.empty()) {
        std::error_code ec;
        std::filesystem::remove(scratchPath, ec);
    }
    // Years beyond the tables (a damaged settings file) find nothing.
    if (settings.startYear < kFirstTableYear || settings.endYear > kLastTableYear ||
        settings.endYear < settings.startYear)
        return outcome;
    const int years = settings.endYear - settings.startYear + 1;
    int yearsBefore = 0;  // progress of the kinds already searched
    for (const EclipseKind kind : {EclipseKind::Solar, EclipseKind::Lunar}) {
        if (kind == EclipseKind::Solar ? !settings.solar : !settings.lunar) continue;
        // The records of the span, from the file of the start year onwards.
        std::vector<EclipseRecord> span;
        bool done = false;
        for (int number = EclipseFileNumber(settings.startYear); !done && number <= kEclipseFileCount; ++number) {
            std::string path;
            std::optional<std::vector<EclipseRecord>> records;
            if (LocateDataFile(EclipseFileName(kind, number), path)) records = ReadEclipseFile(path);
            if (!records) {
                // A missing file ends the scan of this kind.
                if (number == EclipseFileNumber(settings.startYear)) outcome.tablesMissing = true;
                break;
            }
            for (const EclipseRecord& r : *records) {
                if (r.year < settings.startYear) continue;
                if (r.year > settings.endYear) {
                    done = true;
                    break;
                }
                span.push_back(r);
            }
        }

        // Two threads take alternate records; the calling thread reports the
        // progress by the years of its own (the two keep the same pace).
        std::vector<std::optional<EclipseSearchResult>> found(span.size());
        std::atomic<bool> stop{false};
        auto work = [&](std::size_t first, bool reporting) {
            int lastYear = settings.startYear;
            for (std::size_t i = first; i < span.size(); i += 2) {
                if (stop.load(std::memory_order_relaxed)) return;
                if (reporting && progress && span[i].year != lastYear) {
                    lastYear = span[i].year;
                    if (!progress(yearsBefore + lastYear - settings.startYear)) {
                        stop = true;
                        return;
                    }
                }
                found[i] = EvaluateForSite(span[i], kind, settings, site, visibility);
            }
        };
        if (span.size() > 16) {
            std::thread worker(work, std::size_t{1}, false);
            work(0, true);
            worker.join();
        } else {
            for (std::size_t i = 0; i < span.size(); ++i) found[i] = EvaluateForSite(span[i], kind, settings, site, visibility);
        }
        if (stop.load()) {
            outcome.cancelled = true;
            outcome.results.clear();
            return outcome;
        }
        for (auto& f : found)
            if (f) outcome.results.push_back(std::move(*f));
        // The rest of this kind's span counts as done.
        yearsBefore += years;
        if (progress && !progress(yearsBefore)) {
            outcome.cancelled = true;
            return outcome;
        }
    }
    if (!scratchPath.empty() && !outcome.results.empty()) {
        std::vector<std::uint8_t> bytes;
        for (const EclipseSearchResult& r : outcome.results) {
            std::uint8_t rec[kEclipseRecordBytes];
            EncodeEclipseRecord(r.record, rec);
            bytes.insert(bytes.end(), rec, rec + kEclipseRecordBytes);
        }
        WriteFileAtomically(scratchPath, bytes);  // a scratch copy: a failure costs nothing
    }
    return outcome;
}

std::string FormatEclipseDuration(double seconds)
{
    const long s = std::lround(std::max(0.0, seconds));
    char text[32];
    std::snprintf(text, sizeof text, "%02ldh %02ldm %02lds", s / 3600, (s / 60) % 60, s % 60);
    return text;
}

ResultTable MakeEclipseResultTable(const EclipseSearchSettings& settings, const std::vector<EclipseSearchResult>& results)
{
    ResultTable t;
    t.title = "Eclipses visible between " + YearText(settings.startYear) + " and " + YearText(settings.endYear);
    t.reportHeadings = HeadingLine::Include;
    t.timeBase = "UT";
    t.columns = {
        {"Date (TT)", "greatestJdTT", "", CellAlign::Left, "2024 AD Apr 08 18:18", "", {"Greatest eclipse, dynamical time"}},
        {"Type", "type", "", CellAlign::Left, "Penumbral Lunar", "", {}},
        {"Local max (UT)", "localGreatestJdUT", "", CellAlign::Left, "00:00:00", "", {"Greatest eclipse at the site, UT"}},
        {"Magnitude", "magnitude", "", CellAlign::Right, "0.000", "", {"Solar: at the site; lunar: umbral"}},
        {"Altitude", "altitudeDeg", "deg", CellAlign::Right, "-00.0", "", {"Sun's or Moon's altitude at greatest eclipse"}},
        {"Obscuration", "obscuration", "", CellAlign::Right, "0.00", "", {"Fraction of the Sun's disc covered"}},
        {"Duration", "centralDurationSeconds", "s", CellAlign::Right, "00h 00m 00s", "", {"Totality or annularity at the site"}},
    };
    char text[32];
    for (const EclipseSearchResult& r : results) {
        ResultRow row;
        row.cells.push_back(ResultCell::Number(RecordJulianDateTT(r.record), ResultDateText(r.record)));
        row.cells.emplace_back(EclipseTypeText(r.kind, r.record.type));
        if (r.kind == EclipseKind::Solar) {
            const SolarLocalCircumstances& s = r.solar;
            if (s.eclipsed) {
                row.cells.push_back(ResultCell::Number(s.greatest.jdUT, UtTimeText(s.greatest.jdUT)));
                std::snprintf(text, sizeof text, "%.2lf", s.magnitude);
                row.cells.push_back(ResultCell::Number(s.magnitude, text));
                std::snprintf(text, sizeof text, "%.1lf", s.greatest.altitudeRad * kRadToDeg);
                row.cells.push_back(ResultCell::Number(s.greatest.altitudeRad * kRadToDeg, text));
                std::snprintf(text, sizeof text, "%.2lf", s.obscuration);
                row.cells.push_back(ResultCell::Number(s.obscuration, text));
                if (s.centralDurationSeconds > 0.0)
                    row.cells.push_back(
                        ResultCell::Number(s.centralDurationSeconds, FormatEclipseDuration(s.centralDurationSeconds)));
                else
                    row.cells.emplace_back();
            } else {
                for (int i = 0; i < 5; ++i) row.cells.emplace_back();
            }
        } else {
            const LunarLocalCircumstances& l = r.lunar;
            row.cells.push_back(ResultCell::Number(l.greatest.jdUT, UtTimeText(l.greatest.jdUT)));
            const double m = r.record.type == 'N' ? l.penumbralMagnitude : l.umbralMagnitude;
            std::snprintf(text, sizeof text, "%.2lf", m);
            row.cells.push_back(ResultCell::Number(m, text));
            std::snprintf(text, sizeof text, "%.1lf", l.greatest.altitudeRad * kRadToDeg);
            row.cells.push_back(ResultCell::Number(l.greatest.altitudeRad * kRadToDeg, text));
            row.cells.emplace_back();
            const double totality = l.u2.valid && l.u3.valid ? (l.u3.jdTT - l.u2.jdTT) * 86400.0 : 0.0;
            if (totality > 0.0)
                row.cells.push_back(ResultCell::Number(totality, FormatEclipseDuration(totality)));
            else
                row.cells.emplace_back();
        }
        t.rows.push_back(std::move(row));
    }
    return t;
}

std::optional<ResultTable> MakeEclipseBrowseTable(EclipseKind kind, int fileNumber)
{
    std::string path;
    if (!LocateDataFile(EclipseFileName(kind, fileNumber), path)) return std::nullopt;
    const auto records = ReadEclipseFile(path);
    if (!records) return std::nullopt;
    ResultTable t;
    t.title = std::string(kind == EclipseKind::Solar ? "Solar" : "Lunar") + " eclipses, file " +
              std::to_string(fileNumber);
    t.reportHeadings = HeadingLine::Include;
    t.columns = {
        {"Date", "date", "", CellAlign::Left, "1999BC May 21", "", {}},
        {"Type", "type", "", CellAlign::Left, "Penumbral", "", {}},
        {"Greatest (TT)", "greatestJdTT", "", CellAlign::Left, "00:00", "", {"Greatest eclipse, dynamical time"}},
        {"Magnitude", "magnitude", "", CellAlign::Right, "0.00", "", {"Solar: eclipse magnitude; lunar: umbral (penumbral for penumbral eclipses)"}},
    };
    char text[32];
    for (const EclipseRecord& r : *records) {
        ResultRow row;
        const double jd = RecordJulianDateTT(r);
        row.cells.push_back(ResultCell::Number(jd, BrowseDateText(r)));
        row.cells.emplace_back(EclipseTypeShortText(kind, r.type));
        std::snprintf(text, sizeof text, "%02d:%02d", r.hour, r.minute);
        row.cells.push_back(ResultCell::Number(jd, text));
        std::snprintf(text, sizeof text, "%.2lf", r.extra / 100.0);
        row.cells.push_back(ResultCell::Number(r.extra / 100.0, text));
        t.rows.push_back(std::move(row));
    }
    return t;
}

void EclipseBrowsePosition::Load(const CSettingsStore& store, EclipseKind kind)
{
    const char* section = kind == EclipseKind::Solar ? "SolarEclipse" : "LunarEclipse";
    fileNumber = store.GetInt(section, "FileNumber", 5);
    if (fileNumber < 1 || fileNumber > kEclipseFileCount) fileNumber = 5;
    lineNumber = std::max(0, store.GetInt(section, "LineNumber", 0));
}

void EclipseBrowsePosition::Save(CSettingsStore& store, EclipseKind kind) const
{
    const char* section = kind == EclipseKind::Solar ? "SolarEclipse" : "LunarEclipse";
    store.SetInt(section, "FileNumber", fileNumber);
    store.SetInt(section, "LineNumber", lineNumber);
}

}  // namespace orv
