#include "kit/version.h"

const char* kitVersion() { return VISTREL_VERSION; }
