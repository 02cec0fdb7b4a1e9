// The subcommands of kpg, each in the file of its name.
#pragma once

#include <CLI/CLI.hpp>

void addBuildCommand(CLI::App& app);
void addDumpCommand(CLI::App& app);
void addShotCommand(CLI::App& app);
void addClutCommand(CLI::App& app);
void addFontCommand(CLI::App& app);
void addImageCommand(CLI::App& app);
