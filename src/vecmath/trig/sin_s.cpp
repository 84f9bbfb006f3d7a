// Sin of floats.
#include "vecmath/trig/half_turn_kernels_s.h"

ORV_HALF_TURN_KERNELS(Sin, false)
