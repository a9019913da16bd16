#include "mmss/Mlpl/MlplData.h"

// Standard library
#include <algorithm>

// Tarn
#include "foundation/MessageTable.h"
#include "mmss/Mlpl/MlplRecord.h"
#include "mmss/MmssFrame.h"

namespace Tarn::Mlpl {
namespace {

std::string Nibbles(uint32_t a, uint32_t b) {
    return std::to_string(a) + std::to_string(b);
}

// Three decimal digits of a typed number; anything the checks would refuse is clamped so a
// write never puts more than a nibble into a nibble.
void WriteDigits(CRLFile& file, long long value, bool lastIsFiller) {
    value = std::clamp(value, 0LL, 999LL);
    if (lastIsFiller) {
        file.WriteBits(4, static_cast<uint32_t>(value / 10 % 10));
        file.WriteBits(4, static_cast<uint32_t>(value % 10));
        file.WriteBits(4, 0xF);
    } else {
        file.WriteBits(4, static_cast<uint32_t>(value / 100 % 10));
        file.WriteBits(4, static_cast<uint32_t>(value / 10 % 10));
        file.WriteBits(4, static_cast<uint32_t>(value % 10));
    }
}

}  // namespace

const std::array<Mmss::HeaderField<Header>, 3> Header::kFields = {{
    {"revision", &Header::revision, 8, "CUR_MMSS_P_REV", "mmssRevision",
     "RLType (Mmss Revision) :", "revision", "Mmss Revision Value is Missing",
     "Invalid Mmss Revision Value. Range is 0 - 255"},
    {"version", &Header::version, 16, "MLPL_VERS_ID", "mlplVersion", "Mlpl Version :", "version",
     "Mlpl Version Value is Missing", "Invalid Mlpl Version Value. Range is 0 - 65535"},
    {"id", &Header::id, 8, "MLPL_ID", "mlplId", "Mlpl Id :", "mlpl id", "Mlpl Id Value is Missing",
     "Invalid Mlpl Id Value. Range is 0 - 255"},
}};

bool Location::WritesTags() const {
    if (tags.GetSize() > 1) return true;
    if (tags.GetSize() == 1) return static_cast<const Record*>(tags.GetAt(0))->sysType != 2;
    return false;
}

uint32_t Location::Read(CRLFile& file) {
    const uint32_t type = Mmss::Take(file, 8, "LOC_PARAM_TYPE");
    uint32_t bits = 8;
    mcc.clear();
    mnc.clear();
    tags.Clear();
    if (type & 1u) {
        const uint32_t d1 = Mmss::Take(file, 4, "MLPL MCC");
        const uint32_t d2 = Mmss::Take(file, 4, "MLPL MCC");
        const uint32_t d3 = Mmss::Take(file, 4, "MLPL MCC");
        mcc = Nibbles(d1, d2) + std::to_string(d3);
        bits += 12;
    }
    if (type & 2u) {
        const uint32_t d1 = Mmss::Take(file, 4, "MLPL MNC");
        const uint32_t d2 = Mmss::Take(file, 4, "MLPL MNC");
        const uint32_t d3 = Mmss::Take(file, 4, "MLPL MNC");
        if (d1 == 15 && d2 == 15 && d3 == 15)
            mnc = "FFF";
        else if (d3 == 15)
            mnc = Nibbles(d1, d2);
        else
            mnc = Nibbles(d1, d2) + std::to_string(d3);
        bits += 12;
    }
    if (type & 4u)
        bits += Mmss::ReadRecordList(file, tags, [] { return std::make_unique<Record>(); });
    msplIndex = Mmss::Decimal(Mmss::Take(file, 8, "MSPL_INDEX"));
    return bits + 8;
}

uint32_t Location::Write(CRLFile& file) const {
    const bool writesTags = WritesTags();
    const uint32_t type =
        (mcc.empty() ? 0u : 1u) | (mnc.empty() ? 0u : 2u) | (writesTags ? 4u : 0u);
    file.WriteBits(8, type);
    uint32_t bits = 8;
    if (!mcc.empty()) {
        WriteDigits(file, Mmss::ParseDecimal(mcc), false);
        bits += 12;
    }
    if (!mnc.empty()) {
        if (mnc == "FFF" || mnc == "fff")
            file.WriteBits(12, 0xFFF);
        else
            WriteDigits(file, Mmss::ParseDecimal(mnc), mnc.size() != 3);
        bits += 12;
    }
    if (writesTags) bits += Mmss::WriteRecordList(file, tags);
    file.WriteBits(8, static_cast<uint32_t>(Mmss::ParseDecimal(msplIndex)) & 0xFFu);
    return bits + 8;
}

std::string Location::Check(int tab) const {
    if (!mcc.empty()) {
        if (!Mmss::IsDigits(mcc) || Mmss::ParseDecimal(mcc) > 999)
            return FormatMessage(Msg::MccTabRange, {tab, 0, 999});
        if (mcc.size() != 3) return FormatMessage(Msg::MccTabNotThreeDigits, {tab});
    }
    if (!mnc.empty() && mnc != "FFF" && mnc != "fff") {
        if (!Mmss::IsDigits(mnc) || Mmss::ParseDecimal(mnc) > 999)
            return FormatMessage(Msg::MncTabRange, {tab, 0, 999});
        if (mnc.size() != 2 && mnc.size() != 3) return FormatMessage(Msg::MncTabDigits, {tab});
    }
    if (!Mmss::IsDigits(msplIndex) || Mmss::ParseDecimal(msplIndex) > 255)
        return FormatMessage(Msg::MsplIndexTabRange, {tab, 0, 255});
    if (tags.GetSize() > Mmss::kMaxListRecords)
        return "Tab-" + std::to_string(tab) + " holds " + std::to_string(tags.GetSize()) +
               " location tags; at most 255 fit in the file.";
    return {};
}

uint32_t Data::Read(CRLFile& file) {
    records.clear();
    file.Seek(0);
    file.SetBitOffset(0);
    Mmss::Take(file, 16, "MLPL_SIZE");
    Mmss::Take(file, 8, "CUR_MMSS_P_REV");
    Mmss::Take(file, 16, "MLPL_VERS_ID");
    Mmss::Take(file, 8, "MLPL_ID");
    const uint32_t count = Mmss::Take(file, 8, "NUM_MLPL_RECS");
    uint32_t bits = 56;
    for (uint32_t i = 0; i < count; ++i) {
        records.emplace_back();
        bits += records.back().Read(file);
    }
    const int pad = static_cast<int>((8 - bits % 8) % 8);
    Mmss::Take(file, pad, "MLPL pad");
    return bits + static_cast<uint32_t>(pad);
}

uint32_t Data::Write(CRLFile& file) const {
    if (records.size() > Mmss::kMaxListRecords)
        throw Mmss::FormatError("The file holds " + std::to_string(records.size()) +
                                " MLPL records; at most 255 fit in it.");
    file.Seek(0);
    file.SetBitOffset(0);
    file.WriteBits(16, 0);
    file.Seek(6);
    file.WriteBits(8, static_cast<uint32_t>(records.size()));
    uint64_t bits = 24;
    for (const auto& record : records) bits += record.Write(file);
    bits += Mmss::PadBody(file, bits);
    return static_cast<uint32_t>(bits);
}

std::string Data::CheckTabs() const {
    for (size_t i = 0; i < records.size(); ++i) {
        std::string problem = records[i].Check(static_cast<int>(i + 1));
        if (!problem.empty()) return problem;
    }
    return {};
}

void SaveFile(CRLFile& file, const Header& header, const Data& data) {
    file.SetBitOffset(0);
    uint64_t total = header.Write(file);
    total += data.Write(file);
    Mmss::PatchSizeWord(file, total, "MLPL");
}

}  // namespace Tarn::Mlpl
