// The headless document every MMSS kind builds on, and what the kinds say about themselves once:
// their traits (names, extensions, grid, messages), their header fields, and the shape the
// editor's form gives them (header fields, then tabs, each with its own fields and records).
// A save runs the checks first and turns a failure met while writing into the kind's "error
// while saving" message.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <utility>
#include <vector>

#include "formats/FileKinds.h"
#include "mmss/MmssFrame.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLItem.h"

namespace Tarn::Mmss {

class Document;

// What a kind is, apart from its code: one row each in the table of MmssKinds.cpp.
struct KindTraits {
    FileKind kind;
    const char* title;     // the registry's and the editor's name: "MSPL", "Technology Order"
    const char* fileType;  // what check and info print, and JSON's "fileType": "MSPL", "TOT"
    std::vector<std::string> extensions;  // without the dot, as the filter writes them
    const char* filter;                   // "Mspl Files (*.mspl)"
    std::vector<std::string> jsonTypes;   // the "fileType" values its JSON form may hold
    const char* tableName;                // the record grid's table
    const char* gridTitle;                // above the record grid: "Mspl Records"
    int gridColumns;
    unsigned needOneRecord;  // the save check of a file without records
    unsigned noRecords;      // the notice after opening a file without records; 0 for none
    unsigned saveFailed;     // "An error occurred while saving ..."
    std::unique_ptr<Document> (*make)();  // an empty document of the kind
};

// Every MMSS kind, in the order the editor registers them; TraitsOf throws for another kind.
const std::vector<KindTraits>& Kinds();
const KindTraits& TraitsOf(FileKind kind);

// A field of the editor's form: the key it is kept under, its label, the longest text it takes,
// the lower-case words by which a check message names it, and what a new tab holds.
struct FormField {
    std::string key;
    std::string label;
    int maxLength = 5;
    std::vector<std::string> cues;
    std::string initial = "0";
};

class Document : public FileDocument {
public:
    explicit Document(FileKind kind) : traits_(TraitsOf(kind)) {}

    const KindTraits& Traits() const { return traits_; }
    FileKind Kind() const override { return traits_.kind; }
    std::string KindName() const override { return traits_.fileType; }

    // The kind's own problems, then "needs at least one record" when there is none.
    std::vector<CheckProblem> Check() const final;
    // Refuses with the first problem of Check(), else writes the bytes the way the editor saves.
    bool Write(std::vector<uint8_t>& bytes, std::string& error) const final;
    // The notices as the editor shows them after loading, in one box: one a line; empty when
    // there is nothing to say.
    std::string LoadNotice() const;

    // An empty document of this kind and shape (a PLMN list of the same list kind).
    virtual std::unique_ptr<Document> Empty() const { return traits_.make(); }

    // Replace what the document holds with a file's bytes or its JSON form; `path` matters only
    // to the kinds named by their path (PLMN lists). Throw on the first thing that does not read.
    virtual void ReadBytes(const std::vector<uint8_t>& bytes, const std::string& path) = 0;
    virtual void ReadJson(const nlohmann::json& json, const std::string& path) = 0;

    // ---- The document as the editor's form shows it.
    virtual std::string Title() const { return traits_.title; }
    virtual std::string GridTitle() const { return traits_.gridTitle; }
    virtual int GridColumns() const { return traits_.gridColumns; }
    virtual std::vector<FormField> HeaderForm() const { return {}; }
    virtual std::vector<std::string> HeaderValues() const { return {}; }
    virtual void SetHeaderValues(const std::vector<std::string>&) {}
    // The fields of a tab; none for the kinds edited in one grid, which have one tab.
    virtual std::vector<FormField> TabForm() const { return {}; }
    virtual size_t TabCount() const { return 1; }
    virtual std::vector<std::string> TabValues(size_t) const { return {}; }
    virtual const CRLItemList& TabRecords(size_t tab) const = 0;
    CRLItemList& TabRecords(size_t tab) {
        return const_cast<CRLItemList&>(std::as_const(*this).TabRecords(tab));
    }
    // Appends a tab with these field values (the one-grid kinds have theirs already) and gives
    // its record list.
    virtual CRLItemList& AddTab(const std::vector<std::string>& values) = 0;
    // The fields of a tab added after `tabs`: the form's initial values.
    virtual std::vector<std::string> NewTabValues(
        const std::vector<std::vector<std::string>>& tabs) const;
    // The message of tab `tab` (from 0) when the save check stops on it, or empty.
    virtual std::string TabProblem(size_t) const { return {}; }
    // A record as a new grid row starts.
    virtual std::unique_ptr<CRLItem> NewRecord() const = 0;
    // Why the text typed into a grid cell is refused at once; empty accepts it.
    virtual std::string RefuseEntry(int, const std::string&) const { return {}; }
    // What "needs at least one record" counts: the records of every tab.
    virtual size_t RecordCount() const;

protected:
    // The kind's problems in the order a save reports them; "needs a record" is added by Check.
    virtual std::vector<std::string> KindProblems() const { return {}; }
    // "There are no ... records in the file." when there are none.
    std::vector<std::string> LoadNotices() const override;
    // Writes header and body into a fresh stream.
    virtual void Save(CRLFile& file) const = 0;

private:
    const KindTraits& traits_;
};

// Reads a kind from bytes or JSON: a fresh document and its ReadBytes or ReadJson.
template <typename Kind>
std::unique_ptr<Kind> FromBytes(const std::vector<uint8_t>& bytes, const std::string& path = {}) {
    auto doc = std::make_unique<Kind>();
    doc->ReadBytes(bytes, path);
    return doc;
}
template <typename Kind>
std::unique_ptr<Kind> FromJson(const nlohmann::json& json, const std::string& path = {}) {
    auto doc = std::make_unique<Kind>();
    doc->ReadJson(json, path);
    return doc;
}

// Runs `read`, turning any exception into `error` and an empty result. Readers of hostile files
// throw on the first thing they cannot make sense of; this is the one place that catches.
std::string DescribeFailure(const std::exception& e);
template <typename Fn>
auto Guarded(Fn&& read, std::string& error) -> decltype(read()) {
    try {
        return read();
    } catch (const std::exception& e) {
        error = DescribeFailure(e);
    }
    return nullptr;
}

// ---- Tab fields ---------------------------------------------------------------------------------

// One field of a tab: as the form shows it, and where the tab's part of the file keeps it.
template <typename T>
struct TabField {
    FormField form;
    std::string T::*value;
};

template <typename T, size_t N>
std::vector<FormField> TabFormOf(const std::array<TabField<T>, N>& fields) {
    std::vector<FormField> form;
    for (const auto& f : fields) form.push_back(f.form);
    return form;
}
template <typename T, size_t N>
std::vector<std::string> TabValuesOf(const T& tab, const std::array<TabField<T>, N>& fields) {
    std::vector<std::string> values;
    for (const auto& f : fields) values.push_back(tab.*f.value);
    return values;
}
template <typename T, size_t N>
void SetTabValues(T& tab, const std::vector<std::string>& values,
                  const std::array<TabField<T>, N>& fields) {
    for (size_t i = 0; i < N; ++i)
        tab.*fields[i].value = i < values.size() ? values[i] : std::string();
}

// ---- Header fields ------------------------------------------------------------------------------

// One field of a kind's header, as the file, the form, the checks and the JSON form know it.
// The value is kept as typed (a decimal string) and becomes a number only when written.
template <typename H>
struct HeaderField {
    const char* key;  // the form's key: "revision", "version", "id"
    std::string H::*value;
    int bits;             // 8 or 16: the largest value is 2^bits - 1
    const char* name;     // in "Premature end of file" messages: "MSPL_VERS_ID"
    const char* json;     // its key in the JSON form
    const char* label;    // the form's label
    const char* cue;      // how a check message names it, lower-case
    const char* missing;  // the check's message when it is empty
    const char* invalid;  // the check's message when it is above the largest value
};

// A header whose fields are packed one after the other from byte `H::kOffset`, as `H::kFields`
// lists them.
template <typename H>
struct FormHeader {
    uint32_t Read(CRLFile& file) {
        file.Seek(H::kOffset);
        file.SetBitOffset(0);
        uint32_t bits = 0;
        for (const auto& f : H::kFields) {
            Self().*f.value = Decimal(Take(file, f.bits, f.name));
            bits += static_cast<uint32_t>(f.bits);
        }
        return bits;
    }
    uint32_t Write(CRLFile& file) const {
        file.Seek(H::kOffset);
        file.SetBitOffset(0);
        uint32_t bits = 0;
        for (const auto& f : H::kFields) {
            file.WriteBits(f.bits, static_cast<uint32_t>(ParseDecimal(Self().*f.value)) &
                                       static_cast<uint32_t>(Largest(f)));
            bits += static_cast<uint32_t>(f.bits);
        }
        return bits;
    }
    std::vector<std::string> Check() const {
        std::vector<std::string> problems;
        for (const auto& f : H::kFields)
            CheckHeaderValue(Self().*f.value, Largest(f), f.missing, f.invalid, problems);
        return problems;
    }
    std::vector<std::string> Values() const {
        std::vector<std::string> values;
        for (const auto& f : H::kFields) values.push_back(Self().*f.value);
        return values;
    }
    void SetValues(const std::vector<std::string>& values) {
        for (size_t i = 0; i < H::kFields.size(); ++i)
            Self().*H::kFields[i].value = i < values.size() ? values[i] : std::string();
    }
    void ToJson(nlohmann::json& out) const {
        for (const auto& f : H::kFields) PutFormValue(out, f.json, Self().*f.value);
    }
    void FromJson(const nlohmann::json& in, DataError code) {
        for (const auto& f : H::kFields) Self().*f.value = GetFormValue(in, f.json, code);
    }
    static std::vector<FormField> Form() {
        std::vector<FormField> form;
        for (const auto& f : H::kFields)
            form.push_back({f.key, f.label,
                            f.bits == 8 ? 3 : 5, {f.cue}, "0"});
        return form;
    }

private:
    static long long Largest(const HeaderField<H>& f) { return (1LL << f.bits) - 1; }
    H& Self() { return static_cast<H&>(*this); }
    const H& Self() const { return static_cast<const H&>(*this); }
};

// A kind whose file is its header then its body, read from one stream (MSPL, MLPL, 3GPP BST,
// technology order table): each part seeks to where it starts itself. `Text` renders the text
// form; the kind's SaveFile writes header, body and size word.
template <typename Header, typename Data, typename Text>
class FormDocument : public Document {
public:
    Header header;
    Data data;

    using Document::Document;

    void ReadBytes(const std::vector<uint8_t>& bytes, const std::string&) override {
        CRLFile file(bytes);
        header.Read(file);
        data.Read(file);
    }
    std::string RenderText() const override {
        std::string text;
        Text::Render(header, data, text);
        return text;
    }
    std::vector<FormField> HeaderForm() const override { return Header::Form(); }
    std::vector<std::string> HeaderValues() const override { return header.Values(); }
    void SetHeaderValues(const std::vector<std::string>& values) override {
        header.SetValues(values);
    }

protected:
    void Save(CRLFile& file) const override { SaveFile(file, header, data); }
};

}  // namespace Tarn::Mmss
