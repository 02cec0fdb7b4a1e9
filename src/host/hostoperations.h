// Where the plain host operations find the shell that carries them out.
#pragma once

class Shell;

// Makes `shell` the one that host.h acts on; null when it goes.
void hostAttach(Shell* shell);
