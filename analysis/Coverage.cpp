#include "analysis/Coverage.h"

#include <algorithm>

#include "roaming_list/AcqItemCellular.h"
#include "roaming_list/AcqItemGeneric.h"
#include "roaming_list/AcqItemPcs.h"

namespace Tarn::Analysis {
namespace {

// The cellular band's two systems each have a primary and a secondary CDMA channel.
struct CellularChannels {
    unsigned primary;
    unsigned secondary;
};
constexpr CellularChannels kSystemA{283, 691};
constexpr CellularChannels kSystemB{384, 777};

// The systems a cellular system selector names: 0 A, 1 B, 3 both.
std::vector<CellularChannels> CellularSystems(unsigned selector) {
    switch (selector) {
        case 0: return {kSystemA};
        case 1: return {kSystemB};
        case 3: return {kSystemA, kSystemB};
        default: return {};
    }
}

// The PCS frequency blocks by their field value (A..F = 0..5, 7 any block).
bool PcsBlockChannels(unsigned block, unsigned& first, unsigned& last) {
    switch (block) {
        case 0: first = 0, last = 299; return true;     // A
        case 1: first = 400, last = 699; return true;   // B
        case 2: first = 900, last = 1199; return true;  // C
        case 3: first = 300, last = 399; return true;   // D
        case 4: first = 700, last = 799; return true;   // E
        case 5: first = 800, last = 899; return true;   // F
        case 7: first = 0, last = 1199; return true;    // any block
        default: return false;
    }
}

}  // namespace

Coverage Coverage::Of(const CAcqItem& item) {
    Coverage c;
    switch (item.GetAcqType()) {
        case 2: {  // cellular standard: the channel selector picks primary, secondary or both
            const auto& r = static_cast<const CAcqItemCellularCdmaStandard&>(item);
            for (const auto& system : CellularSystems(r.GetSystem())) {
                if (r.GetChannel() & 1) c.Add(kBandCellular, system.primary, system.primary);
                if (r.GetChannel() & 2) c.Add(kBandCellular, system.secondary, system.secondary);
            }
            break;
        }
        case 4: {  // cellular preferred: both CDMA channels of each system it names
            const auto& r = static_cast<const CAcqItemCellularAnalog&>(item);
            for (const auto& system : CellularSystems(r.GetSystem())) {
                c.Add(kBandCellular, system.primary, system.primary);
                c.Add(kBandCellular, system.secondary, system.secondary);
            }
            break;
        }
        case 3:  // cellular custom
        case 6:  // PCS channels
        case 8:  // JTACS custom
        case 9: {  // 2 GHz channels
            const unsigned band = item.GetAcqType() == 3   ? kBandCellular
                                  : item.GetAcqType() == 6 ? kBandPcs
                                  : item.GetAcqType() == 8 ? kBandJtacs
                                                           : kBand2GHz;
            for (uint16_t ch : static_cast<const CAcqItemCellularCdmaCustom&>(item).GetChannels())
                c.Add(band, ch, ch);
            break;
        }
        case 5:  // PCS blocks
            for (uint8_t block : static_cast<const CAcqItemPcsCdmaBlocks&>(item).GetBlocks()) {
                unsigned first = 0, last = 0;
                if (PcsBlockChannels(block, first, last)) c.Add(kBandPcs, first, last);
            }
            break;
        case 7:  // JTACS standard: the handset searches the whole band
            c.Add(kBandJtacs, 0, kMaxCdmaChannel);
            break;
        case 10:  // CDMA generic
        case 11:  // HDR generic
            for (const auto& pair : static_cast<const CAcqItemGenericCdma&>(item).GetPairs())
                c.Add(pair.bandClass, pair.channel, pair.channel);
            break;
        default:  // analog, GSM, UMTS, UMB, WLAN and undefined records scan nothing CDMA
            break;
    }
    c.Normalise();
    return c;
}

void Coverage::Add(unsigned band, unsigned first, unsigned last) {
    ranges_.push_back({band, first, last});
}

void Coverage::Normalise() {
    std::sort(ranges_.begin(), ranges_.end(), [](const ChannelRange& a, const ChannelRange& b) {
        return a.band != b.band ? a.band < b.band : a.first < b.first;
    });
    std::vector<ChannelRange> merged;
    for (const auto& r : ranges_) {
        if (!merged.empty() && merged.back().band == r.band && r.first <= merged.back().last + 1)
            merged.back().last = std::max(merged.back().last, r.last);
        else
            merged.push_back(r);
    }
    ranges_ = std::move(merged);
}

bool Coverage::Covers(unsigned band, unsigned channel) const {
    return std::any_of(ranges_.begin(), ranges_.end(), [&](const ChannelRange& r) {
        return r.band == band && r.first <= channel && channel <= r.last;
    });
}

bool Coverage::Overlaps(const Coverage& other) const {
    // Both lists are sorted by (band, first): one merge pass.
    size_t i = 0, j = 0;
    while (i < ranges_.size() && j < other.ranges_.size()) {
        const ChannelRange& a = ranges_[i];
        const ChannelRange& b = other.ranges_[j];
        if (a.band != b.band) {
            (a.band < b.band ? i : j)++;
            continue;
        }
        if (a.first <= b.last && b.first <= a.last) return true;
        (a.last < b.last ? i : j)++;
    }
    return false;
}

std::string Coverage::ToText() const {
    if (ranges_.empty()) return "none";
    std::string out;
    for (size_t i = 0; i < ranges_.size(); ++i) {
        const ChannelRange& r = ranges_[i];
        if (i == 0 || ranges_[i - 1].band != r.band)
            out += (i ? "; band " : "band ") + std::to_string(r.band) + ": ";
        else
            out += ", ";
        out += std::to_string(r.first);
        if (r.last != r.first) out.append("-").append(std::to_string(r.last));
    }
    return out;
}

}  // namespace Tarn::Analysis
