// The kit's commands for the language: run, eval, compile, decode.
#pragma once

#include <CLI/CLI.hpp>

void addBobCommands(CLI::App& app);
