// tarn-cli: the headless, scriptable face of Tarn. No Qt, no display.
#include <algorithm>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "cli/Command.h"

namespace Tarn::Cli {

std::vector<RegisteredCommand>& Commands() {
    static std::vector<RegisteredCommand> commands;
    return commands;
}

CommandRegistrar::CommandRegistrar(int order, std::string name, CommandSetup setup) {
    Commands().push_back({order, std::move(name), std::move(setup)});
}

void PrintError(const std::string& context, const std::string& message) {
    std::cerr << "tarn-cli: " << (context.empty() ? "" : context + ": ") << message << '\n';
}

}  // namespace Tarn::Cli

int main(int argc, char** argv) {
    using namespace Tarn::Cli;
    CLI::App app{"tarn-cli: check, render, convert, join, split and script roaming lists and MMSS files"};
    app.name("tarn-cli");
    app.set_version_flag("--version", "tarn-cli 2.7 (Tarn 2.7 Build 474)");
    app.require_subcommand(1);
    app.fallthrough(false);

    auto& commands = Commands();
    std::sort(commands.begin(), commands.end(), [](const auto& a, const auto& b) {
        return a.order != b.order ? a.order < b.order : a.name < b.name;
    });
    // When the first argument names a verb, only that verb is set up: building the options of
    // every verb costs more than a quick verb takes to run. Anything else (help, a mistyped verb)
    // gets all of them, so help and error messages list every verb.
    const RegisteredCommand* named = nullptr;
    for (const auto& command : commands)
        if (argc > 1 && command.name == argv[1]) named = &command;
    // A first word that is neither an option nor a verb is named, rather than reported as a
    // missing verb.
    if (!named && argc > 1 && argv[1][0] != '-') {
        PrintError("", std::string("\"") + argv[1] + "\" is not a command; \"tarn-cli --help\" lists them.");
        return kExitUsage;
    }
    std::vector<std::pair<CLI::App*, std::function<int()>>> actions;
    for (auto& command : commands) {
        if (named && &command != named) continue;
        size_t before = app.get_subcommands({}).size();
        auto action = command.setup(app);
        auto subs = app.get_subcommands({});
        if (subs.size() > before) actions.emplace_back(subs.back(), std::move(action));
    }

    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp& e) {
        return app.exit(e);
    } catch (const CLI::CallForAllHelp& e) {
        return app.exit(e);
    } catch (const CLI::CallForVersion& e) {
        return app.exit(e);
    } catch (const CLI::ParseError& e) {
        app.exit(e);
        return kExitUsage;
    }
    for (auto& [sub, action] : actions)
        if (sub->parsed()) {
            try {
                return action();
            } catch (const std::exception& e) {
                PrintError(sub->get_name(), e.what());
                return kExitFailure;
            }
        }
    return kExitUsage;
}
