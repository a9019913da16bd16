#include "cli/SystemsListing.h"

#include <cstdio>
#include <iostream>

#include "analysis/ListFacts.h"
#include "analysis/ListSource.h"
#include "analysis/Observation.h"
#include "cli/Command.h"
#include "roaming_list/NameTables.h"
#include "roaming_list/RLManager.h"
#include "roaming_list/SysItemHelpers.h"
#include "roaming_list/SysItemIS2000.h"
#include "roaming_list/SysItemIS856.h"
#include "roaming_list/SysItemMccMnc.h"
#include "roaming_list/SysItemPlmn.h"
#include "roaming_list/SysItemSpecial.h"

namespace Tarn::Cli {
namespace {

std::string Join(const std::vector<std::string>& parts, const char* separator) {
    std::string out;
    for (const auto& p : parts) out += (out.empty() ? "" : separator) + p;
    return out;
}

std::string Padded(unsigned value, int width) {
    char text[16];
    std::snprintf(text, sizeof text, "%0*u", width, value);
    return text;
}

// What a record names, the way an engineer would say it.
std::string Names(const CSysItem& item) {
    using SysFields::FormatMcc;
    using SysFields::FormatMnc;
    if (const auto* r = dynamic_cast<const CSysItemIS2000Mcc*>(&item))
        return "MCC " + Padded(r->GetMcc(), 3) + " IMSI_11_12 " + Padded(r->GetImsi(), 2);
    if (const auto* r = dynamic_cast<const CSysItemIS2000*>(&item))
        return "SID " + std::to_string(r->GetSid()) + " NID " +
               std::to_string(Analysis::EffectiveNid(r->GetNidIncl(), r->GetNid()));
    if (const auto* r = dynamic_cast<const CSysItemIS856*>(&item))
        return "subnet " + r->GetSubnet().ToText();
    if (const auto* r = dynamic_cast<const CSysItemPlmn*>(&item)) {
        if (r->GetPlmnType() == 0) return "PLMN select mode " + std::to_string(r->GetPlmnSelect());
        std::string text = "PLMN " + FormatMcc(r->GetMcc()) + "-" + FormatMnc(r->GetMnc());
        std::vector<std::string> lacs;
        for (uint16_t lac : r->GetLacs()) lacs.push_back(std::to_string(lac));
        if (!lacs.empty()) text += " LAC " + Join(lacs, ",");
        return text;
    }
    if (const auto* r = dynamic_cast<const CSysItemMccMnc*>(&item)) {
        std::string text = "MCC-MNC " + FormatMcc(r->GetMcc()) + "-" + FormatMnc(r->GetMnc());
        std::vector<std::string> entries;
        for (size_t i = 0; i < r->GetSids().size(); ++i)
            entries.push_back(std::to_string(r->GetSids()[i]) +
                              (i < r->GetNids().size() ? "/" + std::to_string(r->GetNids()[i]) : ""));
        for (const auto& subnet : r->GetSubnets()) entries.push_back(subnet.ToText());
        if (!entries.empty()) text += " " + Join(entries, ",");
        return text;
    }
    return "undefined type " + std::to_string(item.GetSysType());
}

}  // namespace

int PrintSystemsByGeo(const std::string& path, const ProviderOption& providers) {
    std::string error;
    auto list = Analysis::LoadRoamingList(path, error);
    if (!list) {
        PrintError("info", error + " (--systems lists the systems of a roaming list)");
        return kExitFailure;
    }
    const auto& directory = providers.Directory("info");
    const Analysis::ListFacts facts(*list->data);
    const auto& types = CRLNameTables::Instance().SysTypes(list->version);
    std::cout << path << ": " << VersionName(list->version) << ", " << facts.SystemCount()
              << " system record(s) in " << facts.GeoCount() << " GEO(s)\n";
    for (int geo = 0; geo < facts.GeoCount(); ++geo) {
        const auto [first, last] = facts.GeoRange(geo);
        std::cout << "GEO " << geo << " (" << last - first << " record(s))\n";
        for (size_t i = first; i < last; ++i) {
            const CSysItem& item = facts.System(i);
            const auto& f = facts.Facts(i);
            std::string line = "  " + std::to_string(i) + "\tlevel " + std::to_string(f.level) +
                               "\t" + (item.IsPreferred() ? "Pref" : "Neg") + "\t" +
                               types.GetName(item.GetSysType()) + "\t" + Names(item) + "\tacq " +
                               std::to_string(item.GetAcqIndex());
            const std::string label =
                Analysis::OperatorLabel(Analysis::OperatorsForRecord(directory, item));
            if (!label.empty()) line += "\t" + label;
            std::cout << line << '\n';
        }
    }
    return std::cout.good() ? kExitOk : kExitFailure;
}

}  // namespace Tarn::Cli
