// Where the stellarium-data package keeps the lists the builder reads, below
// its share folder (usr/share/stellarium): the Hipparcos-keyed lists in
// stars/default/ and the western sky culture's proper names.
#pragma once

#include <string>

namespace orv::databuild {

struct StellariumFiles {
    std::string starsDir;     // stars/default: the Hipparcos star catalogues stars_<level>_<type>v*.cat
    std::string crossIds;     // stars/default/cross-id.dat: HIP → SAO, HD, HR
    std::string designations; // stars/default/name.fab: Bayer letters and Flamsteed numbers
    std::string properNames;  // skycultures/western/star_names.fab
    std::string variables;    // stars/default/gcvs_hip_part.dat: GCVS entries of Hipparcos stars
    std::string doubles;      // stars/default/wds_hip_part.dat: WDS entries of Hipparcos stars
    std::string discoverers;  // stars/default/extra_name.fab: discoverer designations of double stars
    std::string properMotion; // stars/default/hip_pm.dat: Hipparcos proper motions
};

StellariumFiles LocateStellariumFiles(const std::string& shareDir);

// False with "missing source PATH" in `error` for the first list that is not
// there, so that a build stops before it reads anything.
bool CheckStellariumFiles(const StellariumFiles& files, std::string& error);

}  // namespace orv::databuild
