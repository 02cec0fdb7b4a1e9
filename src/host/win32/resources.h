// Numbers of what resources.rc holds.
#pragma once

#define kApplicationIcon 32512  // where the desktop looks for a program's own
