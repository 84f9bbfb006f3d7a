// Sinpi, Cospi and Tanpi of doubles: the functions of pi x.
#include "vecmath/trig/unit_angles_d.h"

ORV_UNIT_ANGLE(Sinpi, HalfTurns, sin)
ORV_UNIT_ANGLE(Cospi, HalfTurns, cos)
ORV_UNIT_ANGLE(Tanpi, HalfTurns, tan)
