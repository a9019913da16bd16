#include "roaming_list/RLJson.h"

#include <stdexcept>

#include "roaming_list/AcqItem.h"
#include "roaming_list/DataException.h"
#include "roaming_list/NameTables.h"
#include "roaming_list/RLManager.h"
#include "roaming_list/SysItem.h"

namespace Tarn {
namespace {

using nlohmann::json;

json TableToJson(const CRLItemList& items, bool acquisition, int version) {
    json table = json::array();
    const CRLNameTables& names = CRLNameTables::Instance();
    for (size_t i = 0; i < items.GetSize(); ++i) {
        json record = json::object();
        record["index"] = i;
        int type = 0;
        if (acquisition) {
            type = static_cast<const CAcqItem*>(items.GetAt(i))->GetAcqType();
            record["typeName"] = names.AcqTypes(version).GetName(type);
        } else {
            type = static_cast<const CSysItem*>(items.GetAt(i))->GetSysType();
            record["typeName"] = names.SysTypes(version).GetName(type);
        }
        record["type"] = type;
        items.GetAt(i)->ToJson(record);
        table.push_back(std::move(record));
    }
    return table;
}

// A whole number that is not negative: parsed JSON holds it as unsigned, JSON built in code as
// a signed integer.
bool IsCount(const json& v) { return v.is_number_integer() && v.get<int64_t>() >= 0; }

template <typename T>
T Field(const json& object, const char* key, T fallback, T max) {
    if (!object.contains(key)) return fallback;
    const json& v = object.at(key);
    if constexpr (std::is_same_v<T, bool>) {
        if (v.is_boolean()) return v.get<bool>();
        if (IsCount(v) && v.get<uint64_t>() <= 1) return v.get<uint64_t>() == 1;
    } else {
        if (IsCount(v) && v.get<uint64_t>() <= static_cast<uint64_t>(max))
            return static_cast<T>(v.get<uint64_t>());
    }
    throw std::runtime_error(std::string("header: \"") + key + "\" must be a number from 0 to " +
                             std::to_string(static_cast<uint64_t>(max)));
}

std::string Where(const char* table, size_t index) {
    return std::string(table) + " record " + std::to_string(index) + ": ";
}

}  // namespace

json ListToJson(const CRLData& data, int version, bool prefixed) {
    const CPropData& p = data.GetProperties();
    json out = json::object();
    out["kind"] = "roamingList";
    out["version"] = VersionName(version);
    out["prefixed"] = prefixed;
    json header = json::object();
    header["listSize"] = p.listSize;
    header["prefListId"] = p.prefListId;
    header["prefOnly"] = p.prefOnly;
    header["defRoamInd"] = p.defRoamInd;
    if (version >= 3) {
        header["ssprPRev"] = p.ssprPRev;
        header["reserved"] = p.reserved;
        header["numCommonSubnet"] = p.numCommonSubnet;
    }
    out["header"] = std::move(header);
    out["acquisitionTable"] = TableToJson(data.GetAcqTable().Items(), true, version);
    out["systemTable"] = TableToJson(data.GetSysTable().Items(), false, version);
    return out;
}

std::unique_ptr<CRLData> ListFromJson(const json& in, int& version, int forcedVersion) {
    if (!in.is_object()) throw std::runtime_error("the JSON is not an object");
    if (in.contains("kind") && in.at("kind") != "roamingList")
        throw std::runtime_error("the JSON describes a \"" + in.at("kind").dump() +
                                 "\" file, not a roaming list");
    version = forcedVersion;
    if (version == 0) {
        if (!in.contains("version")) throw std::runtime_error("\"version\" is missing");
        const json& v = in.at("version");
        if (v.is_string()) version = VersionFromName(v.get<std::string>());
        else if (IsCount(v) && v.get<uint64_t>() <= 5) version = static_cast<int>(v.get<uint64_t>());
        if (version < kMinVersion || version > kMaxVersion)
            throw CDataException(DataError::InvalidRlType, "(" + v.dump() + ")");
    }
    auto data = std::make_unique<CRLData>();
    const json header = in.value("header", json::object());
    CPropData& p = data->GetProperties();
    p.prefListId = Field<uint16_t>(header, "prefListId", 0, 0xFFFF);
    p.prefOnly = Field<bool>(header, "prefOnly", false, true);
    p.defRoamInd = Field<uint8_t>(header, "defRoamInd", 0, 0xFF);
    p.ssprPRev = version >= 3 ? 3 : 0;
    p.reserved = version >= 3 ? Field<uint8_t>(header, "reserved", 0, 0x7F) : 0;
    p.numCommonSubnet = 0;

    auto tableOf = [&](const char* key) {
        json t = in.value(key, json::array());
        if (!t.is_array()) throw std::runtime_error(std::string("\"") + key + "\" must be an array");
        return t;
    };
    const json acq = tableOf("acquisitionTable");
    for (size_t i = 0; i < acq.size(); ++i) {
        const json& r = acq[i];
        if (!r.is_object() || !r.contains("type") || !IsCount(r.at("type")) || r.at("type").get<uint64_t>() > 255)
            throw std::runtime_error(Where("acquisition", i) + "\"type\" must be a number");
        const int type = static_cast<int>(r.at("type").get<uint64_t>());
        auto item = CreateAcqItem(type, version);
        if (!item)
            throw std::runtime_error(Where("acquisition", i) + "type " + std::to_string(type) +
                                     " does not exist in " + VersionName(version));
        try {
            item->FromJson(r);
        } catch (const std::exception& e) {
            throw std::runtime_error(Where("acquisition", i) + e.what());
        }
        data->GetAcqTable().Items().Add(std::move(item));
    }
    const json sys = tableOf("systemTable");
    for (size_t i = 0; i < sys.size(); ++i) {
        const json& r = sys[i];
        if (!r.is_object() || !r.contains("type") || !IsCount(r.at("type")) || r.at("type").get<uint64_t>() > 255)
            throw std::runtime_error(Where("system", i) + "\"type\" must be a number");
        const int type = static_cast<int>(r.at("type").get<uint64_t>());
        auto item = CreateSysItem(type, version);
        if (!item)
            throw std::runtime_error(Where("system", i) + "type " + std::to_string(type) +
                                     " does not exist in " + VersionName(version));
        try {
            item->FromJson(r);
        } catch (const std::exception& e) {
            throw std::runtime_error(Where("system", i) + e.what());
        }
        data->GetSysTable().Items().Add(std::move(item));
    }
    return data;
}

}  // namespace Tarn
