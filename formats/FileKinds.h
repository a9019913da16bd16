// One registry of the file kinds Tarn reads and writes: their names, extensions and dialog
// filters, how a kind is chosen from a path, and a headless document per kind that the command
// line and the editor both use to read, check, render, export and write a file.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace Tarn {

// In the order the editor registers its document templates.
enum class FileKind {
    None = 0,
    RoamingList,      // binary, IS-683A..IS-683E
    RoamingListText,  // the text form, ".txt"
    Mspl,
    Bst3Gpp,
    Mlpl,
    Plmn,
    TechOrder,
    Laf,
};

// Rule A: the kind from the path's lower-cased extension ("prl", "bin", "rl*" and an empty path
// give RoamingList; "hin", "hrl", "laf" and unknown extensions give None, as designed).
FileKind KindByExtension(const std::string& path);
// Rule B: the case-sensitive substring search over the whole path, then "laf", then rule A.
FileKind KindForOpen(const std::string& path);

// What one problem found by a check says: the message shown to the user.
struct CheckProblem {
    std::string message;
};

// A file of some kind held in memory, without any user interface.
class FileDocument {
public:
    virtual ~FileDocument() = default;
    virtual FileKind Kind() const = 0;
    // "IS-683C", "MSPL", "EHPLMN", ... : what `check` and `info` print as the file's kind.
    virtual std::string KindName() const = 0;
    // The text form exactly as the editor's text view shows it (lines end in "\r\n"). Throws a
    // std::exception whose message names the record when a value has no text form (a roaming
    // list value without a name, for instance).
    virtual std::string RenderText() const = 0;
    // The whole file as JSON; `FileKindInfo::fromJson` reads the same shape back.
    virtual void ToJson(nlohmann::json& out) const = 0;
    // The checks a save would run; empty when the file may be written as it is.
    virtual std::vector<CheckProblem> Check() const = 0;
    // A few human-readable lines: header fields and record counts.
    virtual std::vector<std::string> Info() const = 0;
    // The file's bytes as a save would write them; false with a reason when it cannot be written.
    virtual bool Write(std::vector<uint8_t>& bytes, std::string& error) const = 0;

    // What the editor tells the user right after loading (an empty table, bytes skipped, the form
    // the file was recognised as), in the order it says them; empty when there is nothing to say.
    std::vector<std::string> Notices() const {
        std::vector<std::string> all = LoadNotices();
        all.insert(all.end(), notices_.begin(), notices_.end());
        return all;
    }
    // A notice from whoever read the file, said after the document's own.
    void AddNotice(std::string text) { notices_.push_back(std::move(text)); }

protected:
    // The document's own notices, found in what it holds.
    virtual std::vector<std::string> LoadNotices() const { return {}; }

private:
    std::vector<std::string> notices_;
};

struct FileKindInfo {
    FileKind kind;
    std::string name;                     // "Roaming List", "MSPL", ...
    std::vector<std::string> extensions;  // without the dot, as written in the filter
    std::string filter;                   // "Mspl Files (*.mspl)"
    // Reads a file's bytes; `path` is given for kinds that depend on the name (PLMN lists).
    // Returns nothing and sets `error` to one clear line when the bytes are not such a file.
    std::function<std::unique_ptr<FileDocument>(const std::vector<uint8_t>& bytes,
                                                const std::string& path, std::string& error)>
        read;
    // Builds a file of this kind from its JSON form; nothing and `error` when the JSON is wrong.
    std::function<std::unique_ptr<FileDocument>(const nlohmann::json& json, const std::string& path,
                                                std::string& error)>
        fromJson;
    // The "fileType" values of this kind's JSON form; empty for the roaming list kinds, whose JSON
    // names no file type.
    std::vector<std::string> jsonTypes;
};

// Every kind, in registration order.
const std::vector<FileKindInfo>& FileKinds();
const FileKindInfo* FindFileKind(FileKind kind);

// Adds the six MMSS kinds (defined with the MMSS code).
void AddMmssFileKinds(std::vector<FileKindInfo>& kinds);
// Adds the roaming list kinds (binary and text).
void AddRoamingListFileKinds(std::vector<FileKindInfo>& kinds);

class CRLData;
// What the editor says right after opening a roaming list (its empty tables).
std::vector<std::string> RoamingListNotices(const CRLData& data);

}  // namespace Tarn

namespace Tarn {

// Reads the file at `path` as the kind the editor would open it as (rule B); a path that names
// no kind is tried as a binary roaming list. What the bytes hold overrides the name: a JSON file
// is read as the kind its JSON describes and the text form of a roaming list as that form, each
// with a notice saying so; the text rendering of an MMSS file is refused by name. Nothing, with
// one clear line in `error`, when the file cannot be read or is not a valid file of that kind.
std::unique_ptr<FileDocument> ReadFileDocument(const std::string& path, std::string& error);
// The same over bytes already in memory; `path` decides the kind as above.
std::unique_ptr<FileDocument> ReadFileDocumentBytes(const std::vector<uint8_t>& bytes,
                                                    const std::string& path, std::string& error);
// Builds a document from the JSON form of any kind: the kind its "fileType" names, else a
// roaming list (binary, or its text form when `path` names one).
std::unique_ptr<FileDocument> ReadJsonDocument(const nlohmann::json& json, const std::string& path,
                                               std::string& error);

}  // namespace Tarn
