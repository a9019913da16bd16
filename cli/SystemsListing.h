// `tarn-cli info FILE --systems`: the system records of a roaming list by GEO, each with its
// priority level, what it names and the operator and country behind it.
#pragma once

#include <string>

#include "cli/ProviderOption.h"

namespace Tarn::Cli {

// Prints the listing to stdout; returns the exit status.
int PrintSystemsByGeo(const std::string& path, const ProviderOption& providers);

}  // namespace Tarn::Cli
