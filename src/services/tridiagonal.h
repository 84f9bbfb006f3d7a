// The core library's tridiagonal solvers as the kernels see them: declarations only. A host may supply its own.
#pragma once

#include <orv/tridiagonal.h>
