// The constellations as a source of sky objects: "Orion", "Ori" and
// "Orionis" (any case) name the constellation, placed where its name is
// written on the chart, so that find centres the chart on it; the identify
// read-out gives its name, abbreviation and genitive. The key of a
// constellation is its number 0-87.
#pragma once

#include <memory>

#include "catalog/constellations/constellationfiles.h"
#include "map/skyobjects.h"

namespace orv {

// The constellation files shared by every chart and the searches, read on
// first use.
class CConstellationHandle {
public:
    CConstellationCatalogue& Get();

private:
    CConstellationCatalogue m_catalogue;
    bool m_loaded = false;
};

class CConstellationObjectSource final : public ISkyObjectSource {
public:
    explicit CConstellationObjectSource(std::shared_ptr<CConstellationHandle> data) : m_data(std::move(data)) {}

    std::string_view Name() const override { return "constellations"; }
    std::string_view Forms() const override { return "constellation names, genitives and abbreviations"; }
    bool Available() const override;
    std::vector<SkyObjectMatch> Resolve(std::string_view text, const CObserverDoc& observer) const override;
    std::optional<ObjectDescription> Describe(std::uint32_t key, const DescribeRequest& request) const override;
    void CompletionNames(std::vector<std::string>& out) const override;

private:
    std::shared_ptr<CConstellationHandle> m_data;
};

}  // namespace orv
