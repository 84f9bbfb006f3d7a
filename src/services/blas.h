// The core library's matrix entries as the kernels see them: declarations only. A host may supply its own.
#pragma once

#include <orv/blas.h>
