// What an acquisition record makes a handset scan of the CDMA bands: band classes and channel
// ranges, used to tell whether a system found on a band and channel is reachable through a record
// and whether two records scan a channel in common.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Tarn {
class CAcqItem;
}

namespace Tarn::Analysis {

// Band classes of the acquisition types that scan fixed bands.
inline constexpr unsigned kBandCellular = 0;
inline constexpr unsigned kBandPcs = 1;
inline constexpr unsigned kBandJtacs = 3;
inline constexpr unsigned kBand2GHz = 6;
// Largest channel number any CDMA channel field can carry; a whole band is 0 to this.
inline constexpr unsigned kMaxCdmaChannel = 2047;

struct ChannelRange {
    unsigned band = 0;
    unsigned first = 0;  // inclusive
    unsigned last = 0;   // inclusive
    bool operator==(const ChannelRange&) const = default;
};

class Coverage {
public:
    // What `item` scans (nothing for the analog, GSM, UMTS, UMB, WLAN and undefined records).
    static Coverage Of(const CAcqItem& item);

    bool Covers(unsigned band, unsigned channel) const;
    // True when some band and channel is scanned by both.
    bool Overlaps(const Coverage& other) const;
    bool Empty() const { return ranges_.empty(); }
    // Sorted by band and first channel, overlapping and touching ranges merged.
    const std::vector<ChannelRange>& Ranges() const { return ranges_; }
    // "band 0: 283, 384; band 1: 0-299" for the human outputs; "none" when empty.
    std::string ToText() const;

private:
    void Add(unsigned band, unsigned first, unsigned last);
    void Normalise();
    std::vector<ChannelRange> ranges_;
};

}  // namespace Tarn::Analysis
