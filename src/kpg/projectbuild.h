// What the commands that build a project share.
#pragma once

#include <string>

#include "kit/project/build.h"
#include "kpg/commandline.h"

// The argument by which a command takes the folder of a project.
void addProjectFolder(KpgCommand& command, std::string& folder);

// The project in a folder, or around the current one for an empty name; `output`, if given, is where its files go.
Project openProject(const std::string& folder, const std::string& output = {});

// Builds it, with a bar on a terminal and a line for each file elsewhere. Warnings of what a check finds as well are
// left to it if one follows.
BuildReport buildOnTerminal(const Project& project, BuildOptions options = {}, bool checkFollows = false);
void sayWarning(const KitMessage& warning, bool checkFollows);
