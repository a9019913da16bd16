// Loading a roaming list for analysis from any of its forms: binary (any version, prefixed or
// not), one part of a concatenated list, the text form or the JSON form.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "roaming_list/RLData.h"

namespace Tarn::Analysis {

// The form a roaming list was read from.
enum class ListForm { Binary, Concatenated, Text, Json };

struct LoadedList {
    std::unique_ptr<CRLData> data;
    int version = 0;
    bool is1xEV = false;   // a text form written as the 1xEV list of IS-683C
    bool prefixed = false;
    ListForm form = ListForm::Binary;
    // Bytes of the binary list as read (the part chosen of a concatenated list); empty for the
    // text and JSON forms.
    size_t byteSize = 0;
};

// Reads `path` as a roaming list. The form is recognised by content: a JSON object, the text
// form (whatever the file is named), a concatenated list, or a binary list. `part` (1 or 2) picks
// the list of a concatenated file and is refused for anything else when it is 2. Nothing, with
// one clear line in `error`, when the file cannot be read or holds no valid roaming list.
std::unique_ptr<LoadedList> LoadRoamingList(const std::string& path, std::string& error,
                                            int part = 1);
// The same over bytes already in memory; `name` only serves the messages.
std::unique_ptr<LoadedList> LoadRoamingListBytes(std::vector<uint8_t> bytes,
                                                 const std::string& name, std::string& error,
                                                 int part = 1);

}  // namespace Tarn::Analysis
