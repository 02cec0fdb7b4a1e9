#include "kit/watch/folderevents.h"

std::unique_ptr<FolderEvents> openFolderEvents() { return openFolderPolling(); }
