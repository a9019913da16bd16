#include "roaming_list/Conversion.h"

#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>

#include "roaming_list/AcqItem.h"
#include "roaming_list/NameTables.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLManager.h"
#include "roaming_list/SysItem.h"

namespace Tarn {
namespace {

using nlohmann::json;

constexpr uint8_t kGeoNew = 0;
constexpr uint8_t kGeoSame = 1;

std::string Shown(const json& object, const std::string& key) {
    const auto name = object.find(key + "Name");
    if (name != object.end() && name->is_string()) return name->get<std::string>();
    const json& value = object.at(key);
    std::string text = value.is_string() ? value.get<std::string>() : value.dump();
    constexpr size_t kLongest = 60;
    if (text.size() > kLongest) text = text.substr(0, kLongest - 3) + "...";
    return text;
}

bool IsNameKey(const json& object, const std::string& key) {
    constexpr std::string_view suffix = "Name";
    return key.size() > suffix.size() && key.ends_with(suffix) &&
           object.contains(key.substr(0, key.size() - suffix.size()));
}

// What a record held (`before`) against what it holds in the target version (`after`): one
// entry per field whose value did not survive. `defaults` are the values of a new record of the
// source version, so a field the target lacks but that held its default is no loss.
std::vector<std::string> FieldChanges(const json& before, const json& after, const json& defaults) {
    std::vector<std::string> changes;
    for (auto it = before.begin(); it != before.end(); ++it) {
        const std::string& key = it.key();
        if (IsNameKey(before, key)) continue;
        const auto there = after.find(key);
        if (there == after.end()) {
            const auto d = defaults.find(key);
            if (d != defaults.end() && *d == it.value()) continue;
            changes.push_back(key + " " + Shown(before, key) + " dropped");
        } else if (*there != it.value()) {
            changes.push_back(key + " " + Shown(before, key) + " -> " + Shown(after, key));
        }
    }
    return changes;
}

struct Family {
    const char* noun;  // "acquisition", "system"
    const CNameList& (CRLNameTables::*types)(int) const;
    std::unique_ptr<CRLItem> (*create)(int type, int version);
    std::unique_ptr<CReadHelper> (*helper)(int version);
    int (*typeOf)(const CRLItem&);
};

const Family kAcqFamily{
    "acquisition", &CRLNameTables::AcqTypes,
    [](int type, int version) -> std::unique_ptr<CRLItem> { return CreateAcqItem(type, version); },
    [](int version) -> std::unique_ptr<CReadHelper> {
        if (version >= 3) return std::make_unique<CReadHelperAcqC>(version);
        return std::make_unique<CReadHelperAcqA>(version);
    },
    [](const CRLItem& item) -> int {
        const auto* acq = dynamic_cast<const CAcqItem*>(&item);
        return acq ? acq->GetAcqType() : -1;
    }};

const Family kSysFamily{
    "system", &CRLNameTables::SysTypes,
    [](int type, int version) -> std::unique_ptr<CRLItem> { return CreateSysItem(type, version); },
    [](int version) -> std::unique_ptr<CReadHelper> {
        if (version >= 3) return std::make_unique<CReadHelperSysC>(version);
        return std::make_unique<CReadHelperSysA>(version);
    },
    [](const CRLItem& item) -> int {
        const auto* sys = dynamic_cast<const CSysItem*>(&item);
        return sys ? sys->GetSysType() : -1;
    }};

std::string TypeName(const Family& family, int type, int version) {
    std::string name = (CRLNameTables::Instance().*family.types)(version).GetName(type);
    return name == kInvalidName ? "type " + std::to_string(type) : name;
}

// Writes `item` in the framing of `version` and reads it back the way a manager would, so the
// result holds exactly what a file of that version keeps. Nothing when it cannot be written.
std::unique_ptr<CRLItem> ThroughFile(const Family& family, const CRLItem& item, int version) {
    try {
        CRLFile file;
        file.SetVersion(version);
        item.Write(file);
        file.SeekToBegin();
        file.SetBitOffset(0);
        std::unique_ptr<CRLItem> back = family.helper(version)->CreateItem(file);
        if (!back) return nullptr;
        back->Read(file);
        if (auto replacement = back->GetReplacement()) back = std::move(replacement);
        return back;
    } catch (const std::exception&) {
        return nullptr;
    }
}

class Converter {
public:
    Converter(int from, int to) : from_(from), to_(to), toName_(VersionName(to)) {}

    // The record in the target version, or nothing (with the reason reported) when it is dropped.
    std::unique_ptr<CRLItem> Carry(const Family& family, const CRLItem& source, size_t index) {
        const int type = family.typeOf(source);
        const std::string what = std::string(family.noun) + " record " + std::to_string(index) +
                                 " (" + TypeName(family, type, from_) + ")";
        std::unique_ptr<CRLItem> target = type >= 0 ? family.create(type, to_) : nullptr;
        if (!target) {
            changes_.push_back(what + " dropped: " + toName_ + " cannot carry it");
            return nullptr;
        }
        // Compared is what a save in each version holds, so values a record keeps only until it
        // is written (a 1x-MCC record's SID and NID are made from its MCC when written) do not
        // count as changes.
        json before;
        if (auto saved = ThroughFile(family, source, from_)) {
            saved->ToJson(before);
        } else {
            source.ToJson(before);
        }
        try {
            target->FromJson(before);
        } catch (const std::exception& e) {
            changes_.push_back(what + " dropped: " + toName_ + " cannot carry its values (" +
                               e.what() + ")");
            return nullptr;
        }
        // A record that cannot be written at all (one that fails its own check) is kept as made;
        // the checks before a save name it.
        std::unique_ptr<CRLItem> stored = ThroughFile(family, *target, to_);
        if (!stored) return target;
        json after;
        stored->ToJson(after);
        json defaults;
        if (auto fresh = family.create(type, from_)) fresh->ToJson(defaults);
        const int storedType = family.typeOf(*stored);
        if (storedType != type)
            changes_.push_back(what + ": becomes " + TypeName(family, storedType, to_) + " in " +
                               toName_);
        for (const std::string& change : FieldChanges(before, after, defaults))
            changes_.push_back(what + ": " + change + " in " + toName_);
        return stored;
    }

    void Note(std::string line) { changes_.push_back(std::move(line)); }
    std::vector<std::string> TakeChanges() { return std::move(changes_); }
    const std::string& ToName() const { return toName_; }

private:
    int from_;
    int to_;
    std::string toName_;
    std::vector<std::string> changes_;
};

}  // namespace

ConversionResult ConvertRoamingList(const CRLData& source, int fromVersion, int toVersion) {
    ConversionResult result;
    if (fromVersion == toVersion) {
        result.data = std::make_unique<CRLData>(source);
        return result;
    }
    Converter converter(fromVersion, toVersion);
    auto data = std::make_unique<CRLData>();

    CPropData& prop = data->GetProperties();
    prop = source.GetProperties();
    if (toVersion >= 3) {
        prop.ssprPRev = 3;
    } else {
        if (fromVersion >= 3 && prop.reserved != 0)
            converter.Note("header: reserved bits " + std::to_string(prop.reserved) +
                           " dropped: " + converter.ToName() + " cannot carry them");
        prop.ssprPRev = 0;
        prop.reserved = 0;
    }
    prop.numCommonSubnet = 0;

    // Where each acquisition record went: its new index, or nothing when it was dropped.
    const CRLItemList& acqIn = source.GetAcqTable().Items();
    CRLItemList& acqOut = data->GetAcqTable().Items();
    std::vector<std::optional<unsigned>> newIndex(acqIn.GetSize());
    for (size_t i = 0; i < acqIn.GetSize(); ++i) {
        if (auto item = converter.Carry(kAcqFamily, *acqIn.GetAt(i), i)) {
            newIndex[i] = static_cast<unsigned>(acqOut.GetSize());
            acqOut.Add(std::move(item));
        }
    }

    const CRLItemList& sysIn = source.GetSysTable().Items();
    CRLItemList& sysOut = data->GetSysTable().Items();
    // A region is the run of records from a "New" one through the "Same" ones after it. When its
    // first records are dropped, the first one kept begins it.
    bool regionKept = false;     // the current region has a kept record
    bool regionDropped = false;  // a record of the current region was dropped before any was kept
    for (size_t i = 0; i < sysIn.GetSize(); ++i) {
        const auto* sys = dynamic_cast<const CSysItem*>(sysIn.GetAt(i));
        if (!sys) {
            converter.Note("system record " + std::to_string(i) + " dropped: not a system record");
            continue;
        }
        if (sys->GetGeography() == kGeoNew) regionKept = regionDropped = false;
        const std::string what = "system record " + std::to_string(i) + " (" +
                                 TypeName(kSysFamily, sys->GetSysType(), fromVersion) + ")";
        const unsigned acqIndex = sys->GetAcqIndex();
        // An index beyond the table is left as it is, for the checks to name.
        const bool inRange = acqIndex < newIndex.size();
        if (inRange && !newIndex[acqIndex]) {
            converter.Note(what + " dropped: its acquisition record " + std::to_string(acqIndex) +
                           " was dropped");
            regionDropped = regionDropped || !regionKept;
            continue;
        }
        std::unique_ptr<CRLItem> item = converter.Carry(kSysFamily, *sys, i);
        if (!item) {
            regionDropped = regionDropped || !regionKept;
            continue;
        }
        auto* carried = dynamic_cast<CSysItem*>(item.get());
        if (inRange && *newIndex[acqIndex] != acqIndex) {
            carried->SetAcqIndex(*newIndex[acqIndex]);
            converter.Note(what + ": acquisition index " + std::to_string(acqIndex) + " -> " +
                           std::to_string(*newIndex[acqIndex]));
        }
        if (!regionKept && regionDropped && carried->GetGeography() == kGeoSame) {
            carried->SetGeography(kGeoNew);
            converter.Note(what + ": geography Same -> New (the record that began its region was "
                                  "dropped)");
        }
        regionKept = true;
        sysOut.Add(std::move(item));
    }
    acqOut.SetAnnouncedCount(static_cast<uint32_t>(acqOut.GetSize()));
    sysOut.SetAnnouncedCount(static_cast<uint32_t>(sysOut.GetSize()));
    result.data = std::move(data);
    result.changes = converter.TakeChanges();
    return result;
}

}  // namespace Tarn
