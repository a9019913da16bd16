// The roaming list operations the editor asks of the core, in the shape its documents and
// wizards use them: reading and writing files, text rendering, the checks before a save, version
// conversion and the concatenated list join and split.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "roaming_list/RLData.h"
#include "roaming_list/RLManager.h"

namespace Tarn {

class Grid;

struct ListReadResult {
    std::unique_ptr<CRLManager> manager;  // holds the list; nothing on failure
    std::string error;                    // the text to show on failure
    bool fromText = false;
};

// A ".txt" path is read as the text form, anything else as a binary list (version detection).
ListReadResult ReadListFile(const std::string& path);
ListReadResult ReadBinaryListFile(const std::string& path);
ListReadResult ReadTextListFile(const std::string& path);
// A ".txt" path gets the text form, anything else the binary list; atomically either way.
bool WriteListFile(CRLManager& manager, const std::string& path, std::string& error);
bool WriteBinaryListFile(CRLManager& manager, const std::string& path, std::string& error);
bool WriteTextListFile(const CRLManager& manager, const std::string& path, std::string& error);
bool IsTextPath(const std::string& path);

// The text form of a list; throws std::runtime_error with message 162 when it cannot be built.
std::string RenderListText(const CRLManager& manager);

// One failed check: its message number and text, and where to put the cursor.
struct ListProblem {
    enum class Place { None, DefaultRoamInd, PrefListId, AcqTable, SysTable };
    unsigned messageId = 0;
    std::string text;
    Place place = Place::None;
    int column = -1;
    int row = -1;
    bool warning = false;  // shown with the warning icon rather than the error icon
};

// The header fields as the property view holds them.
struct HeaderTexts {
    std::string defRoamInd;
    std::string prefListId;
    bool prefOnly = false;
};

// Takes the header and both grids into a new list of `version` and checks it, stopping at the
// first problem. `base` gives what the views do not show (the long header's extra fields).
std::unique_ptr<CRLData> TakeListFromViews(int version, const CRLData& base,
                                           const HeaderTexts& header, const Grid& acqGrid,
                                           const Grid& sysGrid, ListProblem& problem);

// A list carried into another version, with one line per thing dropped or changed.
struct ConversionOutcome {
    std::unique_ptr<CRLData> data;
    std::vector<std::string> report;
};
ConversionOutcome ConvertListVersion(const CRLData& data, int fromVersion, int toVersion);

// Join and split of concatenated lists; failures throw with the text to show.
bool IsConcatenatedListFile(const std::string& path);
void JoinListFiles(const std::string& first, const std::string& second, const std::string& out);
void SplitListFile(const std::string& in, const std::string& first, const std::string& second);

}  // namespace Tarn
