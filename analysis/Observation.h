// A system a handset has found (by SID/NID, by MCC/MNC or by HRPD subnet, optionally with the band
// and channel it was found on), and the rule that says whether a system record names it.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "roaming_list/SysItemSubnet.h"

namespace Tarn {
class CSysItem;
}

namespace Tarn::Analysis {

struct Observation {
    enum class Kind { Sid, MccMnc, Subnet };
    Kind kind = Kind::Sid;

    unsigned sid = 0;
    std::optional<unsigned> nid;  // unknown when absent
    std::string mcc;              // three decimal digits
    std::string mnc;              // two or three decimal digits
    std::array<uint16_t, 8> address{};  // the observed IPv6 address, all 128 bits
    unsigned addressLength = 128;
    std::optional<unsigned> band;
    std::optional<unsigned> channel;

    // "SID 4106", "SID 4106 NID 2", "MCC 310 MNC 120", "subnet 2001:db8::1/64", plus
    // " on band 1 channel 25" when the channel is known.
    std::string Describe() const;
};

// The observation's fields as a user gives them (empty: not given). Exactly one of SID,
// MCC+MNC and subnet must be given; NID only with a SID; band and channel together.
struct ObservationFields {
    std::string sid{}, nid{}, mcc{}, mnc{}, subnet{}, band{}, channel{};
};

// Checks and converts the fields; false with one clear line in `error` when they are not an
// observation (a SID that is not a number or above 32767, a malformed subnet, a channel without
// a band, ...).
bool ParseObservation(const ObservationFields& fields, Observation& out, std::string& error);

// A decimal number no larger than `max`; false with "WHAT \"x\" is not a number" or "... is out
// of range (0 - max)" in `error`. Observations and record searches read their numbers alike.
bool ParseBoundedNumber(const std::string& text, unsigned max, const char* what, unsigned& out,
                        std::string& error);

// When `record` names the observed system, how specifically it does so (higher wins: a stated
// NID over the wildcard, more stated MNC digits, a longer subnet prefix); nothing otherwise.
std::optional<int> MatchSpecificity(const CSysItem& record, const Observation& observation);

// What records state about the systems they name, gathered to walk every observation that could
// tell records apart: each SID with the NID a record states for it (kWildcardNid for any NID),
// each MCC with the MNC digits a record states (0xF where a digit is not stated, or as third digit
// where the MNC has two), and each subnet prefix. Read by the same rule as MatchSpecificity, so
// that an observation no entry here names is matched by no record.
struct NamedSystems {
    struct SidNid {
        unsigned sid = 0;
        unsigned nid = 0;
    };
    struct MccMnc {
        unsigned mcc = 0;                // 0..999
        std::array<uint8_t, 3> mnc{};
    };
    std::vector<SidNid> sids;
    std::vector<MccMnc> mccs;
    std::vector<CSubnetId> subnets;
};
void AddNamedSystems(const CSysItem& record, NamedSystems& out);

// The NID an IS-2000 record stands for: NID_INCL 0 is the wildcard 65535, 2 is NID 0, 1 the
// stored NID.
unsigned EffectiveNid(unsigned nidIncl, unsigned nid);
inline constexpr unsigned kWildcardNid = 65535;

}  // namespace Tarn::Analysis
