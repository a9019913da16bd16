// tarn-cli select: what a handset holding the list does when it finds a given system, for one
// observation given as options or for a CSV file of them.
#include <fstream>
#include <iostream>

#include "analysis/ListSource.h"
#include "analysis/Selection.h"
#include "cli/Command.h"
#include "cli/ProviderOption.h"

namespace Tarn::Cli {
namespace {

using namespace Analysis;

struct SelectArgs {
    std::string file, observations;
    ObservationFields fields;
    int part = 1;
    bool json = false;
    ProviderOption providers;
};

// Every row is checked before anything is printed, so a bad row never leaves half an answer on
// stdout; the file is read twice rather than held, which keeps memory flat however long it is.
// A file that cannot be opened is a missing input; a row that is not an observation is bad usage,
// like the same values given as options. Returns the exit status.
int CheckObservationFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        PrintError("select", path + ": cannot be opened");
        return kExitFailure;
    }
    ObservationCsvReader reader(in, path);
    Observation o;
    std::string error;
    for (;;) {
        auto status = reader.Next(o, error);
        if (status == ObservationCsvReader::Status::End) return kExitOk;
        if (status == ObservationCsvReader::Status::Error) {
            PrintError("select", error);
            return kExitUsage;
        }
    }
}

int RunSelect(const SelectArgs& a) {
    const bool single = !a.fields.sid.empty() || !a.fields.nid.empty() || !a.fields.mcc.empty() ||
                        !a.fields.mnc.empty() || !a.fields.subnet.empty() || !a.fields.band.empty() ||
                        !a.fields.channel.empty();
    if (!a.observations.empty() && single) {
        PrintError("select", "give either --observations or one observation, not both");
        return kExitUsage;
    }
    Observation observation;
    std::string error;
    if (a.observations.empty()) {
        if (!ParseObservation(a.fields, observation, error)) {
            PrintError("select", error);
            return kExitUsage;
        }
    } else if (int status = CheckObservationFile(a.observations); status != kExitOk) {
        return status;
    }

    auto list = LoadRoamingList(a.file, error, a.part);
    if (!list) {
        PrintError("select", error);
        return kExitFailure;
    }
    const Selector selector(*list->data);
    const ProviderDirectory& providers = a.providers.Directory("select");

    if (a.observations.empty()) {
        SelectionResult result = selector.Select(observation);
        if (a.json) std::cout << FormatSelectionJson(result, &selector.Facts(), &providers) << '\n';
        else std::cout << FormatSelectionText(result, selector.Facts(), &providers);
        return kExitOk;
    }
    std::ifstream in(a.observations, std::ios::binary);
    ObservationCsvReader reader(in, a.observations);
    std::string line;
    for (;;) {
        auto status = reader.Next(observation, error);
        if (status == ObservationCsvReader::Status::End) break;
        if (status == ObservationCsvReader::Status::Error) {
            // The file changed between the check and now.
            PrintError("select", error);
            return kExitUsage;
        }
        SelectionResult result = selector.Select(observation);
        line = a.json ? FormatSelectionJson(result, &selector.Facts(), &providers)
                      : FormatSelectionLine(result);
        line += '\n';
        std::cout << line;
    }
    std::cout.flush();
    return kExitOk;
}

const CommandRegistrar kRegistrar(35, "select", [](CLI::App& app) {
    auto a = std::make_shared<SelectArgs>();
    CLI::App* sub = app.add_subcommand(
        "select", "What a handset with the list does when it finds a system (by SID/NID, MCC/MNC or "
                  "HRPD subnet, optionally on a band and channel)");
    sub->add_option("FILE", a->file, "A roaming list: binary, concatenated, text or JSON form")->required();
    sub->add_option("--sid", a->fields.sid, "SID of the CDMA 1x system found");
    sub->add_option("--nid", a->fields.nid, "Its NID (unknown when left out)");
    sub->add_option("--mcc", a->fields.mcc, "MCC of a system announced by MCC and MNC");
    sub->add_option("--mnc", a->fields.mnc, "Its MNC (2 or 3 digits)");
    sub->add_option("--subnet", a->fields.subnet, "HRPD sector subnet: IPv6ADDRESS/LENGTH");
    sub->add_option("--band", a->fields.band, "CDMA band class the system was found on");
    sub->add_option("--channel", a->fields.channel, "Channel the system was found on");
    sub->add_option("--observations", a->observations,
                    "CSV file of observations (header sid,nid,mcc,mnc,subnet,band,channel); "
                    "one result a line");
    sub->add_option("--part", a->part, "Which list of a concatenated file: 1 or 2")
        ->check(CLI::Range(1, 2));
    sub->add_flag("--json", a->json, "One JSON object (JSON Lines for --observations)");
    a->providers.AddTo(sub);
    return std::function<int()>([a] { return RunSelect(*a); });
});

}  // namespace
}  // namespace Tarn::Cli
