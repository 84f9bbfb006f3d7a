// The core service library as the kernels see it: declarations only. A host may supply its own.
#pragma once

#include <orv/services.h>
