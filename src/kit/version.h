// Which kit this is. What another version has built is built anew.
#pragma once

const char* kitVersion();  // "1.2.3"
