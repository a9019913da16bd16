#include "mmss/Plmn/PlmnRecord.h"

// Standard library
#include <nlohmann/json.hpp>

// Tarn
#include "foundation/MessageTable.h"
#include "grid/Grid.h"
#include "grid/GridError.h"
#include "mmss/MmssNames.h"

namespace Tarn::Plmn {
namespace {

constexpr DataError kError = DataError::InvalidPlmnType;

uint16_t ValueOf(const Mmss::Digits& d) {
    return static_cast<uint16_t>(d[0] * 100 + d[1] * 10 + d[2]);
}

}  // namespace

void Record::UpdateValues() {
    mccValue = ValueOf(mcc);
    mncValue = ValueOf(mnc);
}

uint32_t Record::Read(CRLFile& file) {
    Mmss::ReadPlmnDigits(file, mcc, mnc);
    UpdateValues();
    if (!HasAccessBytes(listKind)) return 24;
    const uint32_t first = Mmss::Take(file, 8, "PLMN access technology");
    const uint32_t second = Mmss::Take(file, 8, "PLMN access technology");
    umts = static_cast<uint8_t>((first >> 7) & 1u);
    lte = static_cast<uint8_t>((first >> 6) & 1u);
    gsm = static_cast<uint8_t>((second >> 7) & 1u);
    return 40;
}

uint32_t Record::Write(CRLFile& file) const {
    Mmss::Digits out = mcc;
    if (out[1] > 9) out[1] = static_cast<uint8_t>(out[1] % 10);
    Mmss::WritePlmnDigits(file, out, mnc);
    if (!HasAccessBytes(listKind)) return 0;
    file.WriteBits(8, (umts ? 0x80u : 0u) | (lte ? 0x40u : 0u));
    file.WriteBits(8, gsm ? 0x80u : 0u);
    return 16;
}

void Record::WriteToGrid(Grid& grid, int row) const {
    grid.SetCellText(kMcc, row, MccText());
    grid.SetCellText(kMnc, row, MncText());
    if (!HasAccessBytes(listKind)) return;
    const uint8_t flags[] = {umts, lte, gsm};
    for (int c = kUmts; c <= kGsm; ++c) {
        grid.SetCellCheckBox(c, row);
        grid.SetCellText(c, row, flags[c - kUmts] ? "1" : "0");
    }
}

void Record::ReadFromGrid(const Grid& grid, int row, const GridContext&) {
    Record r = *this;
    const std::string table = grid.GetTableName();
    if (!Mmss::ParseMcc(Mmss::RequiredCell(grid, kMcc, row), r.mcc))
        throw GridError(Msg::InvalidMcc, kMcc, row, table);
    if (!Mmss::ParseMnc(Mmss::RequiredCell(grid, kMnc, row), r.mnc))
        throw GridError(Msg::InvalidMnc, kMnc, row, table);
    r.UpdateValues();
    if (HasAccessBytes(listKind)) {
        r.umts = grid.IsCellChecked(kUmts, row) ? 1 : 0;
        r.lte = grid.IsCellChecked(kLte, row) ? 1 : 0;
        r.gsm = grid.IsCellChecked(kGsm, row) ? 1 : 0;
    }
    *this = r;
}

bool Record::OnGridHeading(Grid& grid, int event) const {
    if (event != kGridHeadingEvent) return true;
    if (HasAccessBytes(listKind))
        Mmss::SetHeadings(grid, {"MCC", "MNC", "UMTS Present", "LTE Present", "GSM Present"});
    else
        Mmss::SetHeadings(grid, {"MCC", "MNC"});
    return true;
}

std::string Record::ToText() const {
    std::string line = MccText() + "\t" + MncText() + "\t";
    if (HasAccessBytes(listKind)) {
        const auto& yesNo = Mmss::NameTables::Instance().YesNo();
        for (uint8_t flag : {umts, lte, gsm}) line += yesNo.GetName(flag) + "\t";
    }
    return line + "\r\n";
}

void Record::ToJson(nlohmann::json& out) const {
    out["mcc"] = Mmss::NibbleText(mcc, false);
    out["mnc"] = Mmss::NibbleText(mnc, true);
    if (HasAccessBytes(listKind)) {
        out["umtsPresent"] = umts != 0;
        out["ltePresent"] = lte != 0;
        out["gsmPresent"] = gsm != 0;
    }
}

void Record::FromJson(const nlohmann::json& in) {
    Record r(listKind);
    const std::string mccText = Mmss::JsonText(in, "mcc", kError);
    const std::string mncText = Mmss::JsonText(in, "mnc", kError);
    if (!Mmss::ParseNibbleText(mccText, false, r.mcc))
        throw CDataException(kError, "(mcc \"" + mccText + "\" is not three digits)");
    if (!Mmss::ParseNibbleText(mncText, true, r.mnc))
        throw CDataException(kError, "(mnc \"" + mncText + "\" is not two or three digits)");
    r.UpdateValues();
    r.umts = Mmss::JsonBoolOr(in, "umtsPresent", false, kError) ? 1 : 0;
    r.lte = Mmss::JsonBoolOr(in, "ltePresent", false, kError) ? 1 : 0;
    r.gsm = Mmss::JsonBoolOr(in, "gsmPresent", false, kError) ? 1 : 0;
    *this = r;
}

}  // namespace Tarn::Plmn
