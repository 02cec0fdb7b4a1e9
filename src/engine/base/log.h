// Gates most warnings about pictures, colour tables and scripts. Nothing changes it.
#pragma once

inline constexpr bool logVerbose = true;
