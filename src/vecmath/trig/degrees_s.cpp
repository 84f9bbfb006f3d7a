// Sind, Cosd and Tand of floats: the functions of x degrees.
#include "vecmath/trig/unit_angles_s.h"

ORV_UNIT_ANGLE_S(Sind, Degrees, sin)
ORV_UNIT_ANGLE_S(Cosd, Degrees, cos)
ORV_UNIT_ANGLE_S(Tand, Degrees, tan)
