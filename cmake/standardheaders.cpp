#include "standardheaders.h"
