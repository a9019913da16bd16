// The editor's command line: flags with their argument lists, the file to open, and what
// start-up makes of them (open a file, run an unattended conversion, or refuse to start).
#pragma once

#include <map>
#include <string>
#include <vector>

#include "formats/FileKinds.h"

namespace Tarn {

class CCommandLineInfoEx {
public:
    // Parses the parameters after the program name, in order.
    void Parse(const std::vector<std::string>& params);
    // One parameter: a flag starts a new, empty argument list under its name and becomes the
    // current option; a plain parameter joins the current option's list and is also the file
    // name (so the last plain parameter wins).
    void ParseParam(const std::string& param, bool isFlag);

    // True when `param` is written as a flag; `name` receives it without its "-" or "/".
    // A "/" parameter is a flag only when the rest holds no '/' and no '.', so absolute paths
    // such as "/tmp/list.prl" stay file names.
    static bool IsFlag(const std::string& param, std::string& name);

    bool HasOption(const std::string& name) const { return options_.count(name) != 0; }
    const std::vector<std::string>* Arguments(const std::string& name) const;

    const std::map<std::string, std::vector<std::string>>& Options() const { return options_; }
    // Kept for options of the form name=value; start-up does not use it.
    std::map<std::string, std::string>& Values() { return values_; }
    const std::string& LastOption() const { return lastOption_; }
    const std::string& FileName() const { return fileName_; }

private:
    std::map<std::string, std::vector<std::string>> options_;
    std::map<std::string, std::string> values_;
    std::string lastOption_;
    std::string fileName_;
};

// What start-up does with a parsed command line.
struct StartupRequest {
    enum class Mode { Interactive, CommandLine, Fail };
    Mode mode = Mode::Interactive;
    std::string option;  // "f", "c" or "u" in command-line mode
    std::string first;   // first argument, or the file to open interactively
    std::string second;
    std::string error;  // why start-up fails
};

// Options "f", then "c", then "u": the first present wins and needs two arguments.
StartupRequest DecideStartup(const CCommandLineInfoEx& info);

// The document kind of an unattended conversion: the two arguments are searched for ".mspl",
// ".Bst3Gpp", ".tot", ".mlpl", ".oplmn", ".uplmn", ".ehplmn" and ".laf" in that order (first
// argument, then second, for each); a roaming list when none matches.
FileKind CommandLineKind(const std::string& first, const std::string& second);

}  // namespace Tarn
