// Sind, Cosd and Tand of doubles: the functions of x degrees.
#include "vecmath/trig/unit_angles_d.h"

ORV_UNIT_ANGLE(Sind, Degrees, sin)
ORV_UNIT_ANGLE(Cosd, Degrees, cos)
ORV_UNIT_ANGLE(Tand, Degrees, tan)
