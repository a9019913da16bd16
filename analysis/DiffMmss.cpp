#include "analysis/DiffMmss.h"

namespace Tarn::Analysis {
namespace {

using nlohmann::json;

// Names stand beside the numbers they describe and the index is the position itself: neither
// can differ without something that is reported differing too.
bool Informational(const std::string& key) {
    return key == "index" || key == "fileType" ||
           (key.size() > 4 && key.compare(key.size() - 4, 4, "Name") == 0);
}

// MMSS records have no identity beyond their position: the handset reads them in order, so a
// record moved is a record changed, and what one file has beyond the other's end is added or
// removed.
void CompareInOrder(TableDiff& t) {
    const size_t na = t.recordsA.size(), nb = t.recordsB.size();
    for (size_t i = 0; i < std::min(na, nb); ++i) {
        auto fields = ChangedFields(t.recordsA[i], t.recordsB[i]);
        if (!fields.empty()) t.changed.push_back({i, i, std::move(fields)});
    }
    for (size_t i = nb; i < na; ++i) t.removed.push_back(i);
    for (size_t j = na; j < nb; ++j) t.added.push_back(j);
}

std::string MsplIdName(const json& id) {
    const json* v = id.is_object() && id.contains("msplId") ? &id.at("msplId") : nullptr;
    return "MSPL ID " + (v ? (v->is_string() ? v->get<std::string>() : v->dump()) : std::string("?"));
}

// An MSPL holds one list per MSPL identifier; the MLPL points at them by identifier, so lists
// pair by identifier (in order among repeats) and their records compare in order.
void CompareMsplIds(const json& a, const json& b, std::vector<TableDiff>& out) {
    std::vector<bool> usedB(b.size(), false);
    auto records = [](const json& id) {
        return id.is_object() && id.contains("records") && id.at("records").is_array()
                   ? id.at("records")
                   : json::array();
    };
    for (const auto& idA : a) {
        TableDiff t;
        t.name = MsplIdName(idA);
        t.recordsA = records(idA);
        for (size_t j = 0; j < b.size(); ++j) {
            if (!usedB[j] && MsplIdName(b[j]) == t.name) {
                usedB[j] = true;
                t.recordsB = records(b[j]);
                break;
            }
        }
        CompareInOrder(t);
        out.push_back(std::move(t));
    }
    for (size_t j = 0; j < b.size(); ++j) {
        if (usedB[j]) continue;
        TableDiff t;
        t.name = MsplIdName(b[j]);
        t.recordsB = records(b[j]);
        CompareInOrder(t);
        out.push_back(std::move(t));
    }
}

}  // namespace

bool MmssDiff::Same() const {
    if (!header.empty()) return false;
    for (const auto& t : tables)
        if (!t.Same()) return false;
    return true;
}

std::vector<std::string> ChangedFields(const json& a, const json& b) {
    std::vector<std::string> fields;
    if (!a.is_object() || !b.is_object()) {
        if (a != b) fields.push_back("value");
        return fields;
    }
    for (const auto& [key, value] : a.items()) {
        if (Informational(key)) continue;
        auto it = b.find(key);
        if (it == b.end() || *it != value) fields.push_back(key);
    }
    for (const auto& [key, value] : b.items())
        if (!Informational(key) && !a.contains(key)) fields.push_back(key);
    return fields;
}

MmssDiff DiffMmss(const json& a, const json& b) {
    MmssDiff d;
    d.kind = a.value("fileType", std::string());
    const json empty = json::array();
    auto keys = [&](auto&& visit) {
        for (const auto& [key, value] : a.items()) visit(key);
        for (const auto& [key, value] : b.items())
            if (!a.contains(key)) visit(key);
    };
    keys([&](const std::string& key) {
        if (Informational(key)) return;
        const json& va = a.contains(key) ? a.at(key) : json();
        const json& vb = b.contains(key) ? b.at(key) : json();
        if (va.is_array() || vb.is_array()) {
            const json& ra = va.is_array() ? va : empty;
            const json& rb = vb.is_array() ? vb : empty;
            if (key == "msplIds") {
                CompareMsplIds(ra, rb, d.tables);
            } else {
                TableDiff t;
                t.name = key;
                t.recordsA = ra;
                t.recordsB = rb;
                CompareInOrder(t);
                d.tables.push_back(std::move(t));
            }
        } else if (va != vb) {
            d.header.push_back({key, va, vb});
        }
    });
    return d;
}

}  // namespace Tarn::Analysis
