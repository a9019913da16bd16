#include "cli/ProviderOption.h"

#include <set>

#include "cli/Command.h"

namespace Tarn::Cli {

void ProviderOption::AddTo(CLI::App* sub) {
    sub->add_option("--providers", path_,
                    "Provider database (serviceproviders.xml) naming the operators; the "
                    "installed one by default");
}

const Analysis::ProviderDirectory& ProviderOption::Directory(const std::string& verb) const {
    const auto& directory = Analysis::ProviderDirectory::Shared(path_);
    static std::set<const Analysis::ProviderDirectory*> reported;
    if (reported.insert(&directory).second)
        for (const auto& warning : directory.Warnings()) PrintError(verb, "warning: " + warning);
    return directory;
}

}  // namespace Tarn::Cli
