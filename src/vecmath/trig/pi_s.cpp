// Sinpi, Cospi and Tanpi of floats: the functions of pi x.
#include "vecmath/trig/unit_angles_s.h"

ORV_UNIT_ANGLE_S(Sinpi, HalfTurns, sin)
ORV_UNIT_ANGLE_S(Cospi, HalfTurns, cos)
ORV_UNIT_ANGLE_S(Tanpi, HalfTurns, tan)
