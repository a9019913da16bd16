// The roaming list kinds of the registry: the binary list (any version, with or without the
// 5-byte prefix) and its text form.
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "formats/FileKinds.h"
#include "foundation/MessageTable.h"
#include "roaming_list/AcqItem.h"
#include "roaming_list/ConcatPrl.h"
#include "roaming_list/DataException.h"
#include "roaming_list/NameTables.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLJson.h"
#include "roaming_list/RLManager.h"
#include "roaming_list/RLManagerText.h"
#include "roaming_list/SysItem.h"
#include "roaming_list/Validation.h"

namespace Tarn {
namespace {

// "Analog Cellular x2, CDMA PCS (blocks) x1": counts by type name in first-seen order.
template <typename Item, typename TypeOf>
std::string CountByType(const CRLItemList& items, const CNameList& names, TypeOf typeOf) {
    std::vector<std::pair<int, int>> counts;
    for (const auto& item : items) {
        int type = typeOf(static_cast<const Item&>(*item));
        auto it = std::find_if(counts.begin(), counts.end(), [&](auto& c) { return c.first == type; });
        if (it == counts.end()) counts.emplace_back(type, 1);
        else ++it->second;
    }
    std::string out;
    for (const auto& [type, n] : counts) {
        if (!out.empty()) out += ", ";
        std::string name = names.GetName(type);
        if (name == kInvalidName) name = "type " + std::to_string(type);
        out += name + " x" + std::to_string(n);
    }
    return out.empty() ? "none" : out;
}

class RoamingListDocument : public FileDocument {
public:
    RoamingListDocument(std::unique_ptr<CRLData> data, int version, bool prefixed, bool text,
                        bool is1xEV)
        : data_(std::move(data)), version_(version), prefixed_(prefixed), text_(text), is1xEV_(is1xEV) {}

    FileKind Kind() const override { return text_ ? FileKind::RoamingListText : FileKind::RoamingList; }
    std::string KindName() const override {
        std::string name = is1xEV_ ? k1xEVTypeName : VersionName(version_);
        return text_ ? name + " (text)" : name;
    }
    std::string RenderText() const override {
        try {
            return RenderRoamingListText(*data_, version_, is1xEV_);
        } catch (const CTextRenderException& e) {
            // The bare message says only that the list cannot be shown; the user needs the record.
            throw std::runtime_error(std::string(e.what()) + " (" + e.Detail() + ")");
        }
    }
    void ToJson(nlohmann::json& out) const override { out = ListToJson(*data_, version_, prefixed_); }
    std::vector<CheckProblem> Check() const override {
        std::vector<CheckProblem> problems;
        for (const auto& issue : CheckRoamingList(*data_, version_).issues)
            problems.push_back({issue.Describe()});
        return problems;
    }
    std::vector<std::string> Info() const override {
        const CPropData& p = data_->GetProperties();
        const CRLNameTables& names = CRLNameTables::Instance();
        std::vector<std::string> lines = {
            "Roaming List Type: " + KindName(),
            std::string("Prefixed: ") + (prefixed_ ? "yes (5-byte prefix; written without it)" : "no"),
            "List size: " + std::to_string(p.listSize) + " bytes",
            "Preferred List ID: " + std::to_string(p.prefListId),
            std::string("Preferred Only: ") + (p.prefOnly ? "TRUE" : "FALSE"),
            "Default Roaming Indicator: " + std::to_string(p.defRoamInd),
        };
        if (version_ >= 3) {
            lines.push_back("SSPR_P_REV: " + std::to_string(p.ssprPRev));
            lines.push_back("Reserved: " + std::to_string(p.reserved));
            lines.push_back("Common subnet records: " + std::to_string(p.numCommonSubnet));
        }
        const CRLItemList& acq = data_->GetAcqTable().Items();
        const CRLItemList& sys = data_->GetSysTable().Items();
        lines.push_back("Acquisition records: " + std::to_string(acq.GetSize()) + " (" +
                        CountByType<CAcqItem>(acq, names.AcqTypes(version_),
                                              [](const CAcqItem& a) { return a.GetAcqType(); }) +
                        ")");
        lines.push_back("System records: " + std::to_string(sys.GetSize()) + " (" +
                        CountByType<CSysItem>(sys, names.SysTypes(version_),
                                              [](const CSysItem& s) { return s.GetSysType(); }) +
                        ")");
        return lines;
    }
    bool Write(std::vector<uint8_t>& bytes, std::string& error) const override {
        if (text_) {
            try {
                std::string text = RenderText();
                bytes.assign(text.begin(), text.end());
                return true;
            } catch (const std::exception& e) {
                error = e.what();
                return false;
            }
        }
        auto manager = CreateClassFactory(version_)->CreateManager();
        auto copy = std::make_unique<CRLData>(*data_);
        manager->AttachData(copy);
        CRLFile file;
        try {
            if (!manager->WriteList(file)) {
                error = manager->GetLastError();
                return false;
            }
        } catch (const std::exception& e) {
            error = e.what();
            return false;
        }
        bytes = file.TakeBytes();
        return true;
    }

protected:
    std::vector<std::string> LoadNotices() const override { return RoamingListNotices(*data_); }

private:
    std::unique_ptr<CRLData> data_;
    int version_;
    bool prefixed_;
    bool text_;
    bool is1xEV_;
};

std::unique_ptr<FileDocument> ReadBinary(const std::vector<uint8_t>& bytes, const std::string&,
                                         std::string& error) {
    CRLFile file(bytes);
    DetectResult r = DetectVersion(file);
    if (!r.manager) {
        size_t first = 0;
        if (CheckConcatenatedPrl(bytes.data(), bytes.size(), first))
            error = "This file is a Concatenated PRL file (first list " + std::to_string(first) +
                    " bytes, second " + std::to_string(bytes.size() - first - 2) +
                    " bytes); split it first.";
        else
            error = std::string(MessageText(Msg::NotRecognizedFormat)) + " (" + r.error + ")";
        return nullptr;
    }
    const bool prefixed = r.manager->IsPrefixed();
    const int version = r.manager->GetVersion();
    return std::make_unique<RoamingListDocument>(r.manager->DetachData(), version, prefixed, false,
                                                 false);
}

std::unique_ptr<FileDocument> ReadText(const std::vector<uint8_t>& bytes, const std::string&,
                                       std::string& error) {
    TextDetectResult r = DetectTextVersion(std::string(bytes.begin(), bytes.end()));
    if (!r.data) {
        error = std::string(MessageText(Msg::NotRecognizedFormat)) + " (" + r.error + ")";
        return nullptr;
    }
    return std::make_unique<RoamingListDocument>(std::move(r.data), r.version, false, true, r.is1xEV);
}

std::unique_ptr<FileDocument> FromJson(const nlohmann::json& json, bool text, std::string& error) {
    try {
        int version = 0;
        auto data = ListFromJson(json, version);
        return std::make_unique<RoamingListDocument>(std::move(data), version, false, text, false);
    } catch (const std::exception& e) {
        error = e.what();
        return nullptr;
    }
}

}  // namespace

std::vector<std::string> RoamingListNotices(const CRLData& data) {
    // The editor says these after opening a list, as errors: a table that is empty cannot be
    // saved as it stands.
    std::vector<std::string> notices;
    if (data.GetAcqTable().GetSize() == 0) notices.push_back(FormatMessage(Msg::NoAcqRecordsInFile));
    if (data.GetSysTable().GetSize() == 0) notices.push_back(FormatMessage(Msg::NoSysRecordsInFile));
    return notices;
}

void AddRoamingListFileKinds(std::vector<FileKindInfo>& kinds) {
    kinds.push_back({FileKind::RoamingList, "Roaming List", {"prl", "rl*", "bin", "hin", "hrl"},
                     "Roaming Lists (*.prl,*.rl*,*.bin,*.hin,*.hrl)", ReadBinary,
                     [](const nlohmann::json& j, const std::string&, std::string& error) {
                         return FromJson(j, false, error);
                     },
                     {}});
    kinds.push_back({FileKind::RoamingListText, "Roaming List Text", {"txt"}, "Text Files (*.txt)",
                     ReadText,
                     [](const nlohmann::json& j, const std::string&, std::string& error) {
                         return FromJson(j, true, error);
                     },
                     {}});
}

}  // namespace Tarn
