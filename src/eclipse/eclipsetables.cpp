#include "eclipse/eclipsetables.h"

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <tuple>

#include "observer/observer.h"
#include "util/atomicfile.h"
#include "util/binaryio.h"
#include "util/datapath.h"
#include "util/dataproblems.h"

namespace orv {

namespace {
const char* const kMonthNames[12] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                     "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
const char* MonthName(int month) { return month >= 1 && month <= 12 ? kMonthNames[month - 1] : "???"; }
}  // namespace

int EclipseFileNumber(int year)
{
    if (year < -999) return 1;
    if (year < 1) return 2;
    if (year <= 1000) return 3;
    if (year <= 2000) return 4;
    return 5;
}

std::string EclipseFileName(EclipseKind kind, int number)
{
    char name[32];
    std::snprintf(name, sizeof name, "data\\%s%1d.dat", kind == EclipseKind::Solar ? "solar" : "lunar", number);
    return name;
}

EclipseRecord RecordFromEvent(const EclipseEvent& event)
{
    const double jdMinute = std::round((event.jdTT - 0.5) * 1440.0) / 1440.0 + 0.5;
    const CivilDateTime c = CivilFromJulianDate(jdMinute + 1.0 / 86400.0);  // clear of the rounding edge
    EclipseRecord r;
    r.year = static_cast<std::int16_t>(c.year);
    r.month = static_cast<std::uint8_t>(c.month);
    r.day = static_cast<std::uint8_t>(c.day);
    r.hour = static_cast<std::uint8_t>(c.hour);
    r.minute = static_cast<std::uint8_t>(c.minute);
    r.type = event.type;
    double magnitude = event.magnitude;
    if (event.kind == EclipseKind::Lunar && event.type == 'N') magnitude = event.penumbralMagnitude;
    const long hundredths = std::lround(magnitude * 100.0);
    r.extra = static_cast<std::uint8_t>(hundredths < 0 ? 0 : hundredths > 255 ? 255 : hundredths);
    return r;
}

double RecordJulianDateTT(const EclipseRecord& r)
{
    return CObserverDoc::JulianDate(r.year, r.month, r.day + r.hour / 24.0 + r.minute / 1440.0);
}

void EncodeEclipseRecord(const EclipseRecord& r, std::uint8_t* out)
{
    const auto y = static_cast<std::uint16_t>(r.year);
    out[0] = static_cast<std::uint8_t>(y & 0xFF);
    out[1] = static_cast<std::uint8_t>(y >> 8);
    out[2] = r.month;
    out[3] = r.day;
    out[4] = r.hour;
    out[5] = r.minute;
    out[6] = static_cast<std::uint8_t>(r.type);
    out[7] = r.extra;
}

EclipseRecord DecodeEclipseRecord(const std::uint8_t* in)
{
    EclipseRecord r;
    r.year = static_cast<std::int16_t>(static_cast<std::uint16_t>(in[0] | (in[1] << 8)));
    r.month = in[2];
    r.day = in[3];
    r.hour = in[4];
    r.minute = in[5];
    r.type = static_cast<char>(in[6]);
    r.extra = in[7];
    return r;
}

std::optional<std::string> WriteEclipseTables(const std::string& dataFolder, const std::vector<EclipseEvent>& events)
{
    namespace fs = std::filesystem;
    std::string sub;
    if (!ResolveCaseInsensitive(dataFolder, "data", sub)) {
        sub = (fs::path(dataFolder) / "data").string();
        std::error_code ec;
        fs::create_directories(sub, ec);
        if (ec) return "Unable to create folder\n\"" + sub + "\"";
    }
    for (const EclipseKind kind : {EclipseKind::Solar, EclipseKind::Lunar}) {
        std::vector<std::uint8_t> bytes[kEclipseFileCount];
        for (const EclipseEvent& e : events) {
            if (e.kind != kind) continue;
            const EclipseRecord r = RecordFromEvent(e);
            auto& out = bytes[EclipseFileNumber(r.year) - 1];
            std::uint8_t rec[kEclipseRecordBytes];
            EncodeEclipseRecord(r, rec);
            out.insert(out.end(), rec, rec + kEclipseRecordBytes);
        }
        for (int n = 1; n <= kEclipseFileCount; ++n) {
            const std::string name = EclipseFileName(kind, n).substr(5);  // after "data\"
            const std::string path = (fs::path(sub) / name).string();
            const AtomicWriteResult w = WriteFileAtomically(path, bytes[n - 1]);
            if (!w.ok) return "Unable to create file\n\"" + path + "\"\n" + w.error;
        }
    }
    return std::nullopt;
}

std::optional<std::vector<EclipseRecord>> ReadEclipseFile(const std::string& path)
{
    std::vector<std::uint8_t> bytes;
    if (!ReadWholeFile(path, bytes)) return std::nullopt;
    // A table cut short by an interrupted copy, or another program's file
    // under our name, is refused as a whole and named to the user: a list
    // of eclipses with a hole or with invented ones would mislead.
    auto refuse = [&](const std::string& reason) -> std::optional<std::vector<EclipseRecord>> {
        ReportDataFileProblem(path, reason);
        return std::nullopt;
    };
    if (bytes.empty()) return refuse("it is empty (a file cut short)");
    if (bytes.size() % kEclipseRecordBytes != 0)
        return refuse("its size, " + std::to_string(bytes.size()) + " bytes, is not a whole number of " +
                      std::to_string(kEclipseRecordBytes) + "-byte records (a file cut short or of another layout)");
    std::vector<EclipseRecord> records;
    records.reserve(bytes.size() / kEclipseRecordBytes);
    for (std::size_t at = 0; at < bytes.size(); at += kEclipseRecordBytes) {
        const EclipseRecord r = DecodeEclipseRecord(bytes.data() + at);
        const bool knownType = r.type == 'T' || r.type == 'P' || r.type == 'H' || r.type == 'A' || r.type == 'N';
        const bool inOrder =
            records.empty() ||
            std::make_tuple(records.back().year, records.back().month, records.back().day, records.back().hour,
                            records.back().minute) <= std::make_tuple(r.year, r.month, r.day, r.hour, r.minute);
        if (r.month < 1 || r.month > 12 || r.day < 1 || r.day > 31 || r.hour > 23 || r.minute > 59 || !knownType ||
            !inOrder)
            return refuse("record " + std::to_string(at / kEclipseRecordBytes + 1) +
                          " is not an eclipse in date order (a file of another layout)");
        records.push_back(r);
    }
    return records;
}

std::string EclipseTypeText(EclipseKind kind, char type)
{
    if (kind == EclipseKind::Solar) {
        switch (type) {
        case 'T': return "Total Solar";
        case 'P': return "Partial Solar";
        case 'H': return "Hybrid Solar";
        case 'A': return "Annular Solar";
        default: return "";
        }
    }
    switch (type) {
    case 'N': return "Penumbral Lunar";
    case 'P': return "Partial Lunar";
    case 'T': return "Total Lunar";
    default: return "";
    }
}

std::string EclipseTypeShortText(EclipseKind kind, char type)
{
    switch (type) {
    case 'T': return "Total";
    case 'P': return "Partial";
    case 'A': return kind == EclipseKind::Solar ? "Annular" : "";
    case 'H': return kind == EclipseKind::Solar ? "Hybrid" : "";
    case 'N': return kind == EclipseKind::Lunar ? "Penumbral" : "";
    default: return "";
    }
}

std::string BrowseDateText(const EclipseRecord& r)
{
    char text[48];
    if (r.year < 1)
        std::snprintf(text, sizeof text, "%4dBC %s %02d", 1 - r.year, MonthName(r.month), r.day);
    else
        std::snprintf(text, sizeof text, "%4d %s %02d", static_cast<int>(r.year), MonthName(r.month), r.day);
    return text;
}

std::string ResultDateText(const EclipseRecord& r)
{
    char year[24];
    if (r.year < 1)
        std::snprintf(year, sizeof year, "%1d BC", 1 - r.year);
    else
        std::snprintf(year, sizeof year, "%1d AD", static_cast<int>(r.year));
    char text[64];
    std::snprintf(text, sizeof text, "%s %s %02d %02d:%02d", year, MonthName(r.month), r.day, r.hour, r.minute);
    return text;
}

}  // namespace orv
