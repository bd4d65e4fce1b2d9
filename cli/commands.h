// The tool's commands. Each adds its subcommand to the application; its
// callback stores the exit code in `exitCode`.
#pragma once

#include <CLI/CLI.hpp>

namespace tnefcli {

void addListCommand(CLI::App& app, int& exitCode);
void addExtractCommand(CLI::App& app, int& exitCode);
void addShowCommand(CLI::App& app, int& exitCode);
void addPropsCommand(CLI::App& app, int& exitCode);
void addBatchCommand(CLI::App& app, int& exitCode);
void addUnwrapCommand(CLI::App& app, int& exitCode);

}  // namespace tnefcli
