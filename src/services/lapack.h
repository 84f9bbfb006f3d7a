// The core library's factorisations as the kernels see them: declarations only. A host may supply its own.
#pragma once

#include <orv/lapack.h>
