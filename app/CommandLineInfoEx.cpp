#include "app/CommandLineInfoEx.h"

#include <array>
#include <utility>

namespace Tarn {

bool CCommandLineInfoEx::IsFlag(const std::string& param, std::string& name) {
    if (param.size() < 2) return false;
    if (param[0] == '-') {
        name = param.substr(1);
        return true;
    }
    if (param[0] == '/') {
        const std::string rest = param.substr(1);
        if (rest.find('/') != std::string::npos || rest.find('.') != std::string::npos)
            return false;
        name = rest;
        return true;
    }
    return false;
}

void CCommandLineInfoEx::Parse(const std::vector<std::string>& params) {
    for (const std::string& p : params) {
        std::string name;
        if (IsFlag(p, name))
            ParseParam(name, true);
        else
            ParseParam(p, false);
    }
}

void CCommandLineInfoEx::ParseParam(const std::string& param, bool isFlag) {
    if (isFlag) {
        options_[param].clear();
        lastOption_ = param;
        return;
    }
    if (!lastOption_.empty()) options_[lastOption_].push_back(param);
    fileName_ = param;
}

const std::vector<std::string>* CCommandLineInfoEx::Arguments(const std::string& name) const {
    auto it = options_.find(name);
    return it == options_.end() ? nullptr : &it->second;
}

StartupRequest DecideStartup(const CCommandLineInfoEx& info) {
    StartupRequest req;
    for (const char* option : {"f", "c", "u"}) {
        const std::vector<std::string>* args = info.Arguments(option);
        if (!args) continue;
        if (args->size() < 2) {
            req.mode = StartupRequest::Mode::Fail;
            req.option = option;
            req.error = std::string("The option -") + option + " needs two file arguments: tarn -" +
                        option + " FIRST SECOND";
            return req;
        }
        req.mode = StartupRequest::Mode::CommandLine;
        req.option = option;
        req.first = (*args)[0];
        req.second = (*args)[1];
        return req;
    }
    req.first = info.FileName();
    return req;
}

FileKind CommandLineKind(const std::string& first, const std::string& second) {
    static const std::array<std::pair<const char*, FileKind>, 8> kinds{{
        {".mspl", FileKind::Mspl},
        {".Bst3Gpp", FileKind::Bst3Gpp},
        {".tot", FileKind::TechOrder},
        {".mlpl", FileKind::Mlpl},
        {".oplmn", FileKind::Plmn},
        {".uplmn", FileKind::Plmn},
        {".ehplmn", FileKind::Plmn},
        {".laf", FileKind::Laf},
    }};
    for (const auto& [needle, kind] : kinds)
        if (first.find(needle) != std::string::npos || second.find(needle) != std::string::npos)
            return kind;
    return FileKind::RoamingList;
}

}  // namespace Tarn
