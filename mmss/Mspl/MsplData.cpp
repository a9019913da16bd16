#include "mmss/Mspl/MsplData.h"

#include "mmss/MmssFrame.h"
#include "mmss/Mspl/MsplRecord.h"

namespace Tarn::Mspl {

const std::array<Mmss::HeaderField<Header>, 2> Header::kFields = {{
    {"revision", &Header::revision, 8, "CUR_MMSS_P_REV", "mmssRevision",
     "RLType (Mmss Revision) :", "revision", "Mmss Revision Value is Missing",
     "Invalid Mmss Revision Value. Range is 0 - 255"},
    {"version", &Header::version, 16, "MSPL_VERS_ID", "msplVersion", "Mspl Version :", "version",
     "Mspl Version Value is missing", "Invalid Mspl Version Value.Range is 0 - 65535"},
}};

CRLItemList& Data::AddId(const std::string& id) {
    ids.push_back(id);
    lists.emplace_back();
    return lists.back();
}

uint32_t Data::Read(CRLFile& file) {
    ids.clear();
    lists.clear();
    file.Seek(0);
    file.SetBitOffset(0);
    Mmss::Take(file, 16, "MSPL_SIZE");
    file.Seek(5);
    const uint32_t count = Mmss::Take(file, 8, "NUM_MSPL_ID");
    uint32_t bits = 24;
    for (uint32_t i = 0; i < count; ++i) {
        CRLItemList& list = AddId(Mmss::Decimal(Mmss::Take(file, 8, "MSPL_ID")));
        bits += 8 + Mmss::ReadRecordList(file, list, [] { return std::make_unique<Record>(); });
    }
    return bits;
}

uint32_t Data::Write(CRLFile& file) const {
    if (lists.size() > ids.size()) return 0;
    if (lists.size() > Mmss::kMaxListRecords)
        throw Mmss::FormatError("The file holds " + std::to_string(lists.size()) +
                                " MSPL ids; at most 255 fit in it.");
    file.Seek(0);
    file.SetBitOffset(0);
    file.WriteBits(16, 0);
    file.Seek(5);
    file.WriteBits(8, static_cast<uint32_t>(lists.size()));
    uint64_t bits = 24;
    for (size_t i = 0; i < lists.size(); ++i) {
        file.WriteBits(8, static_cast<uint32_t>(Mmss::ParseDecimal(ids[i])) & 0xFFu);
        bits += 8 + Mmss::WriteRecordList(file, lists[i]);
    }
    bits += Mmss::PadBody(file, bits);
    return static_cast<uint32_t>(bits);
}

namespace {

std::string CheckId(const std::string& id, size_t tab) {
    if (id.empty()) return "No Mspl Id entered in Tab " + std::to_string(tab);
    // Signed on purpose: "-1" or "abc" pass and are written as their low eight bits.
    if (Mmss::ParseDecimal(id) > 255)
        return "Invalid Mspl Id value in Tab " + std::to_string(tab) + "The range is 0 - 255";
    return {};
}

}  // namespace

std::string Data::CheckIds(const std::vector<std::string>& tabIds) {
    for (size_t i = 0; i < tabIds.size(); ++i) {
        std::string message = CheckId(tabIds[i], i + 1);
        if (!message.empty()) return message;
    }
    return {};
}

void SaveFile(CRLFile& file, const Header& header, const Data& data) {
    file.SetBitOffset(0);
    uint64_t total = header.Write(file);
    total += data.Write(file);
    Mmss::PatchSizeWord(file, total, "MSPL");
}

}  // namespace Tarn::Mspl
