// The subcommands of kpg, each in the file of its name.
#pragma once

#include "kpg/commandline.h"

void addNewCommand(CommandLine& line);
void addBuildCommand(CommandLine& line);
void addCheckCommand(CommandLine& line);
void addCleanCommand(CommandLine& line);
void addPackCommand(CommandLine& line);
void addDumpCommand(CommandLine& line);
void addTreeCommand(CommandLine& line);
void addShotCommand(CommandLine& line);
void addFilmCommand(CommandLine& line);
void addFormatCommand(CommandLine& line);
void addTestCommand(CommandLine& line);
void addDiffCommand(CommandLine& line);
void addWatchCommand(CommandLine& line);
void addStudioCommand(CommandLine& line);
void addRemoteCommand(CommandLine& line);
void addClutCommand(CommandLine& line);
void addColorCommand(CommandLine& line);
void addFontCommand(CommandLine& line);
void addImageCommand(CommandLine& line);
void addRunCommand(CommandLine& line);
void addEvalCommand(CommandLine& line);
void addCompileCommand(CommandLine& line);
void addDecodeCommand(CommandLine& line);
void addProfileCommand(CommandLine& line);
void addDapCommand(CommandLine& line);
void addSchemaCommand(CommandLine& line);
void addLspCommand(CommandLine& line);
void addCompletionCommand(CommandLine& line);
