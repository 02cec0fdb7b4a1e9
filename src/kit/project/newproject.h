// A project to begin with: a page with a title, a picture and three buttons, a script that answers a key, and a font of
// this machine.
#pragma once

#include <string>
#include <vector>

// Makes the folder and returns the files in it. Throws KitError when it is there and not empty, or when the machine has
// no font that the player can draw with; nothing is written then.
std::vector<std::string> newProject(const std::string& folder);
