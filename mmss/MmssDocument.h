// The headless document every MMSS kind builds on: a save runs the checks first and turns a
// failure met while writing into the kind's "error while saving" message.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "formats/FileKinds.h"
#include "roaming_list/RLFile.h"

namespace Tarn::Mmss {

class Document : public FileDocument {
public:
    // Refuses with the first problem of Check(), else writes the bytes the way the editor saves.
    bool Write(std::vector<uint8_t>& bytes, std::string& error) const final;

    // The notices as the editor shows them after loading, in one box: one a line; empty when
    // there is nothing to say.
    std::string LoadNotice() const;

protected:
    // Writes header and body into a fresh stream.
    virtual void Save(CRLFile& file) const = 0;
    // The message id of "An error occurred while saving ..." for this kind.
    virtual unsigned SaveFailedMessage() const = 0;

    static std::vector<CheckProblem> Problems(const std::vector<std::string>& messages);
};

// Runs `read`, turning any exception into `error` and an empty result. Readers of hostile files
// throw on the first thing they cannot make sense of; this is the one place that catches.
template <typename Fn>
std::unique_ptr<FileDocument> Guarded(Fn&& read, std::string& error);

std::string DescribeFailure(const std::exception& e);

template <typename Fn>
std::unique_ptr<FileDocument> Guarded(Fn&& read, std::string& error) {
    try {
        return read();
    } catch (const std::exception& e) {
        error = DescribeFailure(e);
    }
    return nullptr;
}

// Reads a kind whose file is its header then its body from one stream (MSPL, MLPL, 3GPP BST,
// technology order table): each part seeks to where it starts itself.
template <typename Kind>
std::unique_ptr<Kind> ReadHeaderAndBody(const std::vector<uint8_t>& bytes) {
    auto doc = std::make_unique<Kind>();
    CRLFile file(bytes);
    doc->header.Read(file);
    doc->data.Read(file);
    return doc;
}

}  // namespace Tarn::Mmss
