// Finding records in a roaming list by what engineers know a network by: SID, NID, MCC-MNC,
// HRPD subnet, a channel it is scanned on, or its operator's name; and the system filter the
// editor lays over its grid (search text, GEO, preferred or negative, acquisition record used).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "analysis/ListFacts.h"

namespace Tarn::Analysis {

// One condition of a query. A record matches a query when it meets every term.
struct SearchTerm {
    enum class Kind {
        Number,   // a bare number: a SID or NID of a system record, a channel of an acquisition record
        Sid,
        Nid,
        Mcc,      // three digits
        Mnc,      // two or three digits
        MccMnc,
        Channel,  // with an optional band class
        Subnet,
        Name,     // part of an operator's name or country, any case
    };
    Kind kind = Kind::Number;
    unsigned number = 0;           // Number, Sid, Nid, Channel
    std::optional<unsigned> nid;   // Sid: the NID stated beside it ("sid 4106 nid 2")
    std::optional<unsigned> band;  // Channel
    std::string mcc, mnc;          // Mcc, Mnc, MccMnc (digits as typed)
    std::array<uint16_t, 8> address{};  // Subnet: the prefix, left-aligned
    unsigned length = 128;              // Subnet: bits of the prefix that count
    std::string text;              // Name, lower case
};

struct SearchQuery {
    std::vector<SearchTerm> terms;
    bool Empty() const { return terms.empty(); }
};

// Reads a query: "4106", "sid 4106", "SID 4106 NID 2", "nid 2", "310-120", "mcc 310 mnc 120",
// "mcc 310", "channel 283", "ch 25 band 1", "2001:db8::/32", "subnet 2001:db8::1", or words of an
// operator's name ("verizon"); keys may also be written "sid:4106" or "sid=4106". Blank text is
// the empty query (everything matches). False with one clear line in `error` otherwise.
bool ParseSearchQuery(const std::string& text, SearchQuery& out, std::string& error);

// The operator label of a system record ("Verizon Wireless (United States)"), empty when unknown.
using RecordNamer = std::function<std::string(size_t systemIndex)>;

class RecordSearch {
public:
    // `facts` must outlive the search. Without `namer`, name terms match nothing.
    explicit RecordSearch(const ListFacts& facts, RecordNamer namer = {});

    const ListFacts& Facts() const { return facts_; }

    bool SystemMatches(size_t systemIndex, const SearchQuery& query) const;
    bool AcquisitionMatches(size_t acqIndex, const SearchQuery& query) const;

    struct Result {
        std::vector<size_t> acquisitions;  // ascending
        std::vector<size_t> systems;       // ascending
    };
    // Every matching record of both tables; nothing for the empty query.
    Result Find(const SearchQuery& query) const;

    // The system records that name `acqIndex` as their acquisition record.
    std::vector<size_t> SystemsUsing(size_t acqIndex) const;

private:
    bool SystemTermMatches(size_t i, const SearchTerm& term) const;
    bool AcqTermMatches(size_t a, const SearchTerm& term) const;

    const ListFacts& facts_;
    RecordNamer namer_;
};

// What the editor's filter bar keeps visible of the system table; an unset part keeps everything.
struct SystemFilter {
    enum class Preference { Any, Preferred, Negative };
    SearchQuery query;
    std::optional<int> geo;
    Preference preference = Preference::Any;
    std::optional<size_t> acqIndex;

    bool Empty() const {
        return query.Empty() && !geo && preference == Preference::Any && !acqIndex;
    }
};

// One flag per system record: true when it passes the filter.
std::vector<bool> FilterSystems(const RecordSearch& search, const SystemFilter& filter);

}  // namespace Tarn::Analysis
