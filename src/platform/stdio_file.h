// A File is the C library's stream under another name.
#pragma once

#include "platform/platform.h"

#include <stdio.h>

namespace orv::platform {

inline FILE* stream_of(File* file) { return reinterpret_cast<FILE*>(file); }

}  // namespace orv::platform
