// The --providers FILE option every verb that names operators shares: the directory is loaded
// once, and a fault in the database is one warning on stderr, never a failure.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "analysis/Providers.h"

namespace Tarn::Cli {

class ProviderOption {
public:
    // Adds "--providers FILE" to the verb.
    void AddTo(CLI::App* sub);
    // The installed database, or the file the option named. The first call for a database
    // prints its warnings, each once, as "tarn-cli: <verb>: warning: ...".
    const Analysis::ProviderDirectory& Directory(const std::string& verb) const;
    const std::string& Path() const { return path_; }

private:
    std::string path_;
};

}  // namespace Tarn::Cli
