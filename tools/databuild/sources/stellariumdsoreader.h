// Reader of stellarium-data's deep-sky catalogue (nebulae/default/catalog.dat,
// gzip-compressed) and of its list of object names (nebulae/default/names.dat).
//
// The catalogue is a serialised stream in Qt's big-endian data-stream
// encoding: a header of two strings (format version "3.16" and edition), then
// one record per object: a running number, J2000 right ascension and
// declination (radians), blue and visual magnitudes, an object type, a
// morphological type, major and minor axes (degrees), a position angle,
// redshift, parallax and distance with their errors, then its numbers in 30
// catalogues (NGC, IC, Messier, Caldwell, Barnard, Sharpless, van den Bergh,
// RCW, LDN, LBN, Collinder, Melotte, PGC, UGC, Cederblad, Arp, VV, PK, PN G,
// SNR G, ACO, HCG, ESO, vdB-H, DWB, Trumpler, Stock, Ruprecht, vdB-Ha);
// numbers are 32-bit integers and the others strings, as the version's
// reader in Stellarium (Nebula::readDSO) takes them. The catalogue merges
// the NGC/IC objects with the PGC galaxies, the Strasbourg-ESO planetary
// nebulae and a dozen smaller catalogues, one record per object with every
// number it has.
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "common/progress.h"
#include "model/deepsky.h"

namespace orv::databuild {

// The format version this reader understands.
inline constexpr const char* kStellariumDsoVersion = "3.16";

// Parses the uncompressed stream. False with the offset of the fault in
// `error` when a record runs past the end or the version is not understood.
bool ParseStellariumDsoStream(std::span<const std::uint8_t> stream, std::vector<BuildDeepSkyObject>& out,
                              std::string& error);

// Reads and decompresses `path`, then parses it.
bool ReadStellariumDso(const std::string& path, std::vector<BuildDeepSkyObject>& out, const Progress& progress,
                       std::string& error);

// One line of names.dat: the catalogue prefix (columns 1-5), the object's
// number or designation in it (6-20) and the name as _("…"). False for
// comments and lines without a name.
struct DsoNameLine {
    std::string prefix;  // "M", "NGC", "IC", "PGC", "C", "PNG" …
    std::string id;      // "31", "7000", "054.1-12.1"
    std::string name;    // "Andromeda Galaxy"
};
bool ParseDsoNameLine(std::string_view line, DsoNameLine& out);

// Every name of names.dat, in the file's order.
bool ReadDsoNames(const std::string& path, std::vector<DsoNameLine>& out, std::string& error);

// Gives each object the first name names.dat lists for any of its
// designations; returns how many were named.
std::size_t AttachCommonNames(std::vector<BuildDeepSkyObject>& objects, const std::vector<DsoNameLine>& names);

}  // namespace orv::databuild
