#include "analysis/RecordSearch.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <sstream>

#include "analysis/Observation.h"
#include "roaming_list/SysItemIS2000.h"
#include "roaming_list/SysItemIS856.h"
#include "roaming_list/SysItemMccMnc.h"
#include "roaming_list/SysItemPlmn.h"
#include "roaming_list/SysItemSubnet.h"

namespace Tarn::Analysis {
namespace {

using Kind = SearchTerm::Kind;

std::string Lower(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

bool AllDigits(const std::string& text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

// "2001:db8::/32" or a bare address (all 128 bits count).
bool ParseSubnet(const std::string& text, SearchTerm& term, std::string& error) {
    const size_t slash = text.find('/');
    if (!ParseIpv6(text.substr(0, slash), term.address)) {
        error = "subnet \"" + text + "\" is not an IPv6 address";
        return false;
    }
    term.length = 128;
    if (slash != std::string::npos &&
        !ParseBoundedNumber(text.substr(slash + 1), 128, "subnet length", term.length, error))
        return false;
    return true;
}

bool IsKeyword(const std::string& word) {
    static const char* const kKeys[] = {"sid", "nid", "mcc", "mnc", "channel", "chan", "ch",
                                        "band", "subnet"};
    return std::any_of(std::begin(kKeys), std::end(kKeys),
                       [&](const char* k) { return word == k; });
}

// Splits on blanks, and "key:value" or "key=value" into key and value (a subnet keeps its colons).
std::vector<std::string> Tokens(const std::string& text) {
    std::vector<std::string> out;
    std::istringstream in(text);
    std::string word;
    while (in >> word) {
        const size_t sep = word.find_first_of(":=");
        if (sep != std::string::npos && sep > 0 && IsKeyword(Lower(word.substr(0, sep)))) {
            out.push_back(word.substr(0, sep));
            if (sep + 1 < word.size()) out.push_back(word.substr(sep + 1));
        } else {
            out.push_back(word);
        }
    }
    return out;
}

bool DigitsEqual(const std::array<uint8_t, 3>& digits, const std::string& text) {
    for (size_t i = 0; i < 3; ++i)
        if (i >= text.size() || digits[i] != text[i] - '0') return false;
    return true;
}

// A record's MNC against typed digits: F in the record is a wildcard digit, and an F third digit
// marks a two-digit MNC.
bool MncMatches(const std::array<uint8_t, 3>& record, const std::string& typed) {
    const size_t recordDigits = record[2] == 0xF ? 2 : 3;
    if (record[0] == 0xF && record[1] == 0xF && record[2] == 0xF) return true;
    if (typed.size() != recordDigits) return false;
    for (size_t i = 0; i < recordDigits; ++i)
        if (record[i] != 0xF && record[i] != typed[i] - '0') return false;
    return true;
}

// True when the first min(lengths) bits agree: one prefix lies inside the other.
bool PrefixesOverlap(const std::array<uint16_t, 8>& a, unsigned aLength,
                     const std::array<uint16_t, 8>& b, unsigned bLength) {
    const unsigned bits = std::min({aLength, bLength, 128u});
    for (unsigned bit = 0; bit < bits; ++bit) {
        const unsigned word = bit / 16, shift = 15 - bit % 16;
        if (((a[word] >> shift) & 1) != ((b[word] >> shift) & 1)) return false;
    }
    return true;
}

bool CoversAnyBand(const Coverage& coverage, unsigned channel, std::optional<unsigned> band) {
    if (band) return coverage.Covers(*band, channel);
    return std::any_of(coverage.Ranges().begin(), coverage.Ranges().end(),
                       [&](const ChannelRange& r) { return channel >= r.first && channel <= r.last; });
}

// The SID/NID pairs a record states; NID kWildcardNid where it states none.
std::vector<std::pair<unsigned, unsigned>> SidNids(const CSysItem& record) {
    std::vector<std::pair<unsigned, unsigned>> out;
    if (record.GetSysType() == 0) {
        const auto& r = static_cast<const CSysItemIS2000&>(record);
        out.emplace_back(r.GetSid(), EffectiveNid(r.GetNidIncl(), r.GetNid()));
    } else if (record.GetSysType() == 3) {
        const auto& r = static_cast<const CSysItemMccMnc&>(record);
        if (r.GetSubtype() == CSysItemMccMnc::kSid || r.GetSubtype() == CSysItemMccMnc::kSidNid) {
            const auto& sids = r.GetSids();
            const auto& nids = r.GetNids();
            for (size_t i = 0; i < sids.size(); ++i)
                out.emplace_back(sids[i], r.GetSubtype() == CSysItemMccMnc::kSidNid && i < nids.size()
                                              ? nids[i]
                                              : kWildcardNid);
        }
    }
    return out;
}

// MCC and MNC of the records that carry them; `mnc` empty for a 1x-MCC record, which holds only
// IMSI_11_12 (the first two MNC digits).
struct PlmnDigits {
    std::array<uint8_t, 3> mcc{};
    std::optional<std::array<uint8_t, 3>> mnc;
    std::optional<unsigned> imsi1112;
};

std::optional<PlmnDigits> PlmnOf(const CSysItem& record) {
    switch (record.GetSysType()) {
        case 2: {
            const auto& r = static_cast<const CSysItemPlmn&>(record);
            if (r.GetPlmnType() == 0) return std::nullopt;  // "Select Mode" names no network
            return PlmnDigits{r.GetMcc(), r.GetMnc(), std::nullopt};
        }
        case 3: {
            const auto& r = static_cast<const CSysItemMccMnc&>(record);
            return PlmnDigits{r.GetMcc(), r.GetMnc(), std::nullopt};
        }
        case 14: {
            const auto& r = static_cast<const CSysItemIS2000Mcc&>(record);
            const unsigned mcc = r.GetMcc();
            PlmnDigits d;
            d.mcc = {static_cast<uint8_t>(mcc / 100 % 10), static_cast<uint8_t>(mcc / 10 % 10),
                     static_cast<uint8_t>(mcc % 10)};
            if (mcc > 999) d.mcc = {0xF, 0xF, 0xF};  // cannot equal three typed digits
            d.imsi1112 = r.GetImsi();
            return d;
        }
        default:
            return std::nullopt;
    }
}

bool PlmnMncMatches(const PlmnDigits& d, const std::string& mnc) {
    if (d.mnc) return MncMatches(*d.mnc, mnc);
    return d.imsi1112 && static_cast<unsigned>(std::stoul(mnc.substr(0, 2))) == *d.imsi1112;
}

}  // namespace

bool ParseSearchQuery(const std::string& text, SearchQuery& out, std::string& error) {
    out = SearchQuery{};
    const std::vector<std::string> tokens = Tokens(text);
    std::optional<unsigned> band;
    for (size_t i = 0; i < tokens.size(); ++i) {
        const std::string word = Lower(tokens[i]);
        SearchTerm term;
        if (IsKeyword(word)) {
            if (i + 1 >= tokens.size()) {
                error = "\"" + tokens[i] + "\" needs a value after it";
                return false;
            }
            const std::string value = tokens[++i];
            if (word == "sid") {
                term.kind = Kind::Sid;
                if (!ParseBoundedNumber(value, CSysItemIS2000::kMaxSid, "SID", term.number, error))
                    return false;
            } else if (word == "nid") {
                term.kind = Kind::Nid;
                if (!ParseBoundedNumber(value, 65535, "NID", term.number, error)) return false;
            } else if (word == "mcc") {
                if (!AllDigits(value) || value.size() != 3) {
                    error = "MCC \"" + value + "\" must be three digits";
                    return false;
                }
                term.kind = Kind::Mcc;
                term.mcc = value;
            } else if (word == "mnc") {
                if (!AllDigits(value) || value.size() < 2 || value.size() > 3) {
                    error = "MNC \"" + value + "\" must be two or three digits";
                    return false;
                }
                term.kind = Kind::Mnc;
                term.mnc = value;
            } else if (word == "band") {
                unsigned b = 0;
                if (!ParseBoundedNumber(value, 31, "band class", b, error)) return false;
                band = b;
                continue;
            } else if (word == "subnet") {
                term.kind = Kind::Subnet;
                if (!ParseSubnet(value, term, error)) return false;
            } else {  // channel, chan, ch
                term.kind = Kind::Channel;
                if (!ParseBoundedNumber(value, kMaxCdmaChannel, "channel", term.number, error))
                    return false;
            }
        } else if (AllDigits(word)) {
            term.kind = Kind::Number;
            if (!ParseBoundedNumber(word, 65535, "number", term.number, error)) {
                error = word + " is larger than any SID, NID or channel";
                return false;
            }
        } else if (const size_t dash = word.find('-');
                   dash == 3 && AllDigits(word.substr(0, 3)) && AllDigits(word.substr(4)) &&
                   (word.size() == 6 || word.size() == 7)) {
            term.kind = Kind::MccMnc;
            term.mcc = word.substr(0, 3);
            term.mnc = word.substr(4);
        } else if (word.find(':') != std::string::npos) {
            term.kind = Kind::Subnet;
            if (!ParseSubnet(word, term, error)) return false;
        } else {
            term.kind = Kind::Name;
            term.text = word;
        }
        out.terms.push_back(std::move(term));
    }
    // A band only narrows a channel.
    if (band) {
        auto channel = std::find_if(out.terms.begin(), out.terms.end(),
                                    [](const SearchTerm& t) { return t.kind == Kind::Channel; });
        if (channel == out.terms.end()) {
            error = "a band needs a channel: \"band " + std::to_string(*band) + " channel N\"";
            return false;
        }
        channel->band = band;
    }
    // "sid 4106 nid 2" asks for that pair, not for any record of SID 4106 and any stating NID 2.
    auto sid = std::find_if(out.terms.begin(), out.terms.end(),
                            [](const SearchTerm& t) { return t.kind == Kind::Sid; });
    auto nid = std::find_if(out.terms.begin(), out.terms.end(),
                            [](const SearchTerm& t) { return t.kind == Kind::Nid; });
    if (sid != out.terms.end() && nid != out.terms.end()) {
        sid->nid = nid->number;
        out.terms.erase(nid);
    }
    error.clear();
    return true;
}

RecordSearch::RecordSearch(const ListFacts& facts, RecordNamer namer)
    : facts_(facts), namer_(std::move(namer)) {}

bool RecordSearch::SystemTermMatches(size_t i, const SearchTerm& t) const {
    const CSysItem& record = facts_.System(i);
    switch (t.kind) {
        case Kind::Number:
        case Kind::Sid:
        case Kind::Nid:
            for (const auto& [sid, nid] : SidNids(record)) {
                if (t.kind == Kind::Number && (sid == t.number || nid == t.number)) return true;
                if (t.kind == Kind::Sid && sid == t.number && (!t.nid || nid == *t.nid))
                    return true;
                if (t.kind == Kind::Nid && nid == t.number) return true;
            }
            return false;
        case Kind::Mcc:
        case Kind::Mnc:
        case Kind::MccMnc: {
            const auto plmn = PlmnOf(record);
            if (!plmn) return false;
            if (t.kind != Kind::Mnc && !DigitsEqual(plmn->mcc, t.mcc)) return false;
            return t.kind == Kind::Mcc || PlmnMncMatches(*plmn, t.mnc);
        }
        case Kind::Channel:
            return CoversAnyBand(facts_.SystemCoverage(i), t.number, t.band);
        case Kind::Subnet:
            if (record.GetSysType() == 1) {
                const auto& subnet = static_cast<const CSysItemIS856&>(record).GetSubnet();
                return PrefixesOverlap(subnet.words, subnet.length, t.address, t.length);
            }
            if (record.GetSysType() == 3) {
                const auto& r = static_cast<const CSysItemMccMnc&>(record);
                if (r.GetSubtype() != CSysItemMccMnc::kSubnet) return false;
                for (const CSubnetId& s : r.GetSubnets())
                    if (PrefixesOverlap(s.words, s.length, t.address, t.length)) return true;
            }
            return false;
        case Kind::Name:
            return namer_ && Lower(namer_(i)).find(t.text) != std::string::npos;
    }
    return false;
}

bool RecordSearch::AcqTermMatches(size_t a, const SearchTerm& t) const {
    switch (t.kind) {
        case Kind::Number:
            return t.number <= kMaxCdmaChannel &&
                   CoversAnyBand(facts_.AcqCoverage(a), t.number, std::nullopt);
        case Kind::Channel:
            return CoversAnyBand(facts_.AcqCoverage(a), t.number, t.band);
        default:
            return false;  // the other terms name systems, which acquisition records do not
    }
}

bool RecordSearch::SystemMatches(size_t i, const SearchQuery& q) const {
    return i < facts_.SystemCount() &&
           std::all_of(q.terms.begin(), q.terms.end(),
                       [&](const SearchTerm& t) { return SystemTermMatches(i, t); });
}

bool RecordSearch::AcquisitionMatches(size_t a, const SearchQuery& q) const {
    return a < facts_.AcquisitionCount() &&
           std::all_of(q.terms.begin(), q.terms.end(),
                       [&](const SearchTerm& t) { return AcqTermMatches(a, t); });
}

RecordSearch::Result RecordSearch::Find(const SearchQuery& q) const {
    Result result;
    if (q.Empty()) return result;
    for (size_t a = 0; a < facts_.AcquisitionCount(); ++a)
        if (AcquisitionMatches(a, q)) result.acquisitions.push_back(a);
    for (size_t i = 0; i < facts_.SystemCount(); ++i)
        if (SystemMatches(i, q)) result.systems.push_back(i);
    return result;
}

std::vector<size_t> RecordSearch::SystemsUsing(size_t acqIndex) const {
    std::vector<size_t> out;
    for (size_t i = 0; i < facts_.SystemCount(); ++i)
        if (facts_.System(i).GetAcqIndex() == acqIndex) out.push_back(i);
    return out;
}

std::vector<bool> FilterSystems(const RecordSearch& search, const SystemFilter& filter) {
    const ListFacts& facts = search.Facts();
    std::vector<bool> keep(facts.SystemCount(), true);
    if (filter.Empty()) return keep;
    for (size_t i = 0; i < keep.size(); ++i) {
        const SystemFacts& f = facts.Facts(i);
        if (filter.geo && f.geo != *filter.geo) keep[i] = false;
        else if (filter.preference == SystemFilter::Preference::Preferred && !f.preferred)
            keep[i] = false;
        else if (filter.preference == SystemFilter::Preference::Negative && f.preferred)
            keep[i] = false;
        else if (filter.acqIndex && facts.System(i).GetAcqIndex() != *filter.acqIndex)
            keep[i] = false;
        else if (!search.SystemMatches(i, filter.query))
            keep[i] = false;
    }
    return keep;
}

}  // namespace Tarn::Analysis
