// The command objects of tarn-cli: each verb registers itself with the application at start-up.
#pragma once

#include <CLI/CLI.hpp>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

namespace Tarn::Cli {

// Exit statuses shared by every verb.
inline constexpr int kExitOk = 0;
inline constexpr int kExitFailure = 1;
inline constexpr int kExitUsage = 2;

// A verb adds its subcommand and options to `app` and returns the action to run when that
// subcommand was chosen; the action returns the exit status.
using CommandSetup = std::function<std::function<int()>(CLI::App& app)>;

// Collects the verbs in a fixed order (by `order`, then name) however the linker orders files.
struct CommandRegistrar {
    CommandRegistrar(int order, std::string name, CommandSetup setup);
};

struct RegisteredCommand {
    int order;
    std::string name;
    CommandSetup setup;
};
std::vector<RegisteredCommand>& Commands();

// One-line error on stderr in the common form "tarn-cli: <context>: <message>".
void PrintError(const std::string& context, const std::string& message);

}  // namespace Tarn::Cli
