#include "analysis/Observation.h"

#include <charconv>

#include "roaming_list/SysItemIS2000.h"
#include "roaming_list/SysItemIS856.h"
#include "roaming_list/SysItemMccMnc.h"
#include "roaming_list/SysItemPlmn.h"
#include "roaming_list/SysItemSubnet.h"

namespace Tarn::Analysis {
namespace {

bool AllDigits(const std::string& text) {
    return !text.empty() &&
           text.find_first_not_of("0123456789") == std::string::npos;
}

bool SubnetCovers(const CSubnetId& prefix, const std::array<uint16_t, 8>& address) {
    for (unsigned bit = 0; bit < prefix.length; ++bit) {
        const unsigned word = bit / 16, shift = 15 - bit % 16;
        if (((prefix.words[word] >> shift) & 1) != ((address[word] >> shift) & 1)) return false;
    }
    return true;
}

// A record's MNC digit by digit against the observed one. A two-digit MNC is stored with F as its
// third digit, so F there means "two digits"; an F in the first two places matches any digit, and
// FFF matches every MNC. Returns the number of stated digits, or nothing when it does not match.
std::optional<int> MatchMnc(const std::array<uint8_t, 3>& record, const std::string& observed) {
    if (record[0] == 0xF && record[1] == 0xF && record[2] == 0xF) return 0;
    const size_t recordDigits = record[2] == 0xF ? 2 : 3;
    if (observed.size() != recordDigits) return std::nullopt;
    int stated = 0;
    for (size_t i = 0; i < recordDigits; ++i) {
        if (record[i] == 0xF) continue;
        if (record[i] != observed[i] - '0') return std::nullopt;
        ++stated;
    }
    return stated;
}

bool MccEquals(const std::array<uint8_t, 3>& record, const std::string& observed) {
    for (size_t i = 0; i < 3; ++i)
        if (record[i] != observed[i] - '0') return false;
    return true;
}

// A SID (and NID) against one SID/NID a record states: the record's NID 65535 stands for any NID,
// and with no observed NID every record NID matches. The score says whether a NID was stated.
std::optional<int> MatchSidNid(unsigned sid, unsigned nid, const Observation& o) {
    if (sid != o.sid) return std::nullopt;
    if (nid != kWildcardNid && o.nid && *o.nid != nid) return std::nullopt;
    return nid != kWildcardNid ? 1 : 0;
}

}  // namespace

bool ParseBoundedNumber(const std::string& text, unsigned max, const char* what, unsigned& out,
                        std::string& error) {
    unsigned long long value = 0;
    const char* end = text.data() + text.size();
    auto [p, ec] = std::from_chars(text.data(), end, value);
    if (!AllDigits(text) || ec != std::errc() || p != end) {
        error = std::string(what) + " \"" + text + "\" is not a number";
        return false;
    }
    if (value > max) {
        error = std::string(what) + " " + text + " is out of range (0 - " + std::to_string(max) + ")";
        return false;
    }
    out = static_cast<unsigned>(value);
    return true;
}

unsigned EffectiveNid(unsigned nidIncl, unsigned nid) {
    return nidIncl == 1 ? nid : nidIncl == 2 ? 0 : kWildcardNid;
}

std::string Observation::Describe() const {
    std::string out;
    switch (kind) {
        case Kind::Sid:
            out = "SID " + std::to_string(sid);
            if (nid) out += " NID " + std::to_string(*nid);
            break;
        case Kind::MccMnc: out = "MCC " + mcc + " MNC " + mnc; break;
        case Kind::Subnet:
            out = "subnet " + FormatIpv6(address) + "/" + std::to_string(addressLength);
            break;
    }
    if (band && channel)
        out += " on band " + std::to_string(*band) + " channel " + std::to_string(*channel);
    return out;
}

bool ParseObservation(const ObservationFields& f, Observation& out, std::string& error) {
    out = Observation{};
    const int kinds = !f.sid.empty() + (!f.mcc.empty() || !f.mnc.empty()) + !f.subnet.empty();
    if (!f.nid.empty() && f.sid.empty()) {
        error = "--nid needs --sid";
        return false;
    }
    if (kinds != 1) {
        error = kinds == 0 ? "no observation: give --sid, --mcc with --mnc, or --subnet"
                           : "give only one of --sid, --mcc/--mnc and --subnet";
        return false;
    }
    if (f.band.empty() != f.channel.empty()) {
        error = f.band.empty() ? "--channel needs --band" : "--band needs --channel";
        return false;
    }
    if (!f.sid.empty()) {
        out.kind = Observation::Kind::Sid;
        if (!ParseBoundedNumber(f.sid, CSysItemIS2000::kMaxSid, "SID", out.sid, error)) return false;
        if (!f.nid.empty()) {
            unsigned nid = 0;
            if (!ParseBoundedNumber(f.nid, 65535, "NID", nid, error)) return false;
            out.nid = nid;
        }
    } else if (!f.subnet.empty()) {
        out.kind = Observation::Kind::Subnet;
        const size_t slash = f.subnet.find('/');
        if (slash == std::string::npos) {
            error = "subnet \"" + f.subnet + "\" needs a length: ADDRESS/LENGTH";
            return false;
        }
        if (!ParseIpv6(f.subnet.substr(0, slash), out.address)) {
            error = "subnet \"" + f.subnet + "\" is not an IPv6 address";
            return false;
        }
        if (!ParseBoundedNumber(f.subnet.substr(slash + 1), 128, "subnet length", out.addressLength, error))
            return false;
    } else {
        out.kind = Observation::Kind::MccMnc;
        if (f.mcc.empty() || f.mnc.empty()) {
            error = f.mcc.empty() ? "--mnc needs --mcc" : "--mcc needs --mnc";
            return false;
        }
        if (!AllDigits(f.mcc) || f.mcc.size() != 3) {
            error = "MCC \"" + f.mcc + "\" must be three digits";
            return false;
        }
        if (!AllDigits(f.mnc) || f.mnc.size() < 2 || f.mnc.size() > 3) {
            error = "MNC \"" + f.mnc + "\" must be two or three digits";
            return false;
        }
        out.mcc = f.mcc;
        out.mnc = f.mnc;
    }
    if (!f.band.empty()) {
        unsigned band = 0, channel = 0;
        if (!ParseBoundedNumber(f.band, 31, "band class", band, error) ||
            !ParseBoundedNumber(f.channel, 2047, "channel", channel, error))
            return false;
        out.band = band;
        out.channel = channel;
    }
    return true;
}

std::optional<int> MatchSpecificity(const CSysItem& record, const Observation& o) {
    switch (record.GetSysType()) {
        case 0: {  // 95(A,B)/1x
            if (o.kind != Observation::Kind::Sid) return std::nullopt;
            const auto& r = static_cast<const CSysItemIS2000&>(record);
            return MatchSidNid(r.GetSid(), EffectiveNid(r.GetNidIncl(), r.GetNid()), o);
        }
        case 14: {  // 1x-MCC: IMSI_11_12 stands for the first two MNC digits, a full match
            if (o.kind != Observation::Kind::MccMnc) return std::nullopt;
            const auto& r = static_cast<const CSysItemIS2000Mcc&>(record);
            if (r.GetMcc() != std::stoul(o.mcc)) return std::nullopt;
            if (r.GetImsi() != std::stoul(o.mnc.substr(0, 2))) return std::nullopt;
            return 3;
        }
        case 1: {  // IS-856
            if (o.kind != Observation::Kind::Subnet) return std::nullopt;
            const auto& subnet = static_cast<const CSysItemIS856&>(record).GetSubnet();
            if (!SubnetCovers(subnet, o.address)) return std::nullopt;
            return static_cast<int>(subnet.length);
        }
        case 2: {  // PLMN-based; "Select Mode" names no network
            if (o.kind != Observation::Kind::MccMnc) return std::nullopt;
            const auto& r = static_cast<const CSysItemPlmn&>(record);
            if (r.GetPlmnType() == 0 || !MccEquals(r.GetMcc(), o.mcc)) return std::nullopt;
            return MatchMnc(r.GetMnc(), o.mnc);
        }
        case 3: {  // MCC-MNC-based
            const auto& r = static_cast<const CSysItemMccMnc&>(record);
            if (o.kind == Observation::Kind::MccMnc) {
                if (!MccEquals(r.GetMcc(), o.mcc)) return std::nullopt;
                return MatchMnc(r.GetMnc(), o.mnc);
            }
            std::optional<int> best;
            if (o.kind == Observation::Kind::Sid &&
                (r.GetSubtype() == CSysItemMccMnc::kSid || r.GetSubtype() == CSysItemMccMnc::kSidNid)) {
                const auto& sids = r.GetSids();
                const auto& nids = r.GetNids();
                for (size_t i = 0; i < sids.size(); ++i) {
                    const unsigned nid = r.GetSubtype() == CSysItemMccMnc::kSidNid && i < nids.size()
                                             ? nids[i]
                                             : kWildcardNid;
                    auto score = MatchSidNid(sids[i], nid, o);
                    if (score && (!best || *score > *best)) best = score;
                }
            }
            if (o.kind == Observation::Kind::Subnet && r.GetSubtype() == CSysItemMccMnc::kSubnet) {
                for (const auto& subnet : r.GetSubnets())
                    if (SubnetCovers(subnet, o.address) &&
                        (!best || static_cast<int>(subnet.length) > *best))
                        best = static_cast<int>(subnet.length);
            }
            return best;
        }
        default: return std::nullopt;
    }
}

namespace {

std::optional<unsigned> DecimalMcc(const std::array<uint8_t, 3>& digits) {
    unsigned value = 0;
    for (uint8_t d : digits) {
        if (d > 9) return std::nullopt;
        value = value * 10 + d;
    }
    return value;
}

}  // namespace

void AddNamedSystems(const CSysItem& record, NamedSystems& out) {
    switch (record.GetSysType()) {
        case 0: {
            const auto& r = static_cast<const CSysItemIS2000&>(record);
            out.sids.push_back({r.GetSid(), EffectiveNid(r.GetNidIncl(), r.GetNid())});
            break;
        }
        case 14: {
            // Matches an MNC whose first two digits read as IMSI_11_12; values past 999 and 99
            // name nothing an observation can hold.
            const auto& r = static_cast<const CSysItemIS2000Mcc&>(record);
            if (r.GetMcc() <= 999 && r.GetImsi() <= 99)
                out.mccs.push_back({r.GetMcc(), {static_cast<uint8_t>(r.GetImsi() / 10),
                                                 static_cast<uint8_t>(r.GetImsi() % 10), 0xF}});
            break;
        }
        case 1: out.subnets.push_back(static_cast<const CSysItemIS856&>(record).GetSubnet()); break;
        case 2: {
            const auto& r = static_cast<const CSysItemPlmn&>(record);
            if (r.GetPlmnType() == 0) break;
            if (auto mcc = DecimalMcc(r.GetMcc())) out.mccs.push_back({*mcc, r.GetMnc()});
            break;
        }
        case 3: {
            const auto& r = static_cast<const CSysItemMccMnc&>(record);
            if (auto mcc = DecimalMcc(r.GetMcc())) out.mccs.push_back({*mcc, r.GetMnc()});
            if (r.GetSubtype() == CSysItemMccMnc::kSid || r.GetSubtype() == CSysItemMccMnc::kSidNid) {
                const auto& sids = r.GetSids();
                const auto& nids = r.GetNids();
                for (size_t i = 0; i < sids.size(); ++i)
                    out.sids.push_back({sids[i], r.GetSubtype() == CSysItemMccMnc::kSidNid && i < nids.size()
                                                     ? nids[i]
                                                     : kWildcardNid});
            }
            if (r.GetSubtype() == CSysItemMccMnc::kSubnet)
                for (const auto& subnet : r.GetSubnets()) out.subnets.push_back(subnet);
            break;
        }
        default: break;
    }
}

}  // namespace Tarn::Analysis
