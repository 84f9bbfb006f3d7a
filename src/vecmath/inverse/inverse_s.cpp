// sAsin, sAcos, sAtan, their forms in multiples of pi, sAtan2 and sAtan2pi, "HA".
#include "vecmath/inverse/inverse_s.h"

using namespace orv::vecmath;
using namespace orv::vecmath::float_by_double;

using SAtan2 = Atan2<atan_radians, turn_radians>;
using SAtan2pi = Atan2<atan_half_turns, turn_half_turns>;
ORV_ONE_INPUT(sAsin, ha, Asin<arc_radians>)
ORV_ONE_INPUT(sAcos, ha, Acos<arc_radians>)
ORV_ONE_INPUT(sAsinpi, ha, Asin<arc_half_turns>)
ORV_ONE_INPUT(sAcospi, ha, Acos<arc_half_turns>)
ORV_ONE_INPUT(sAtan, ha, Atan<atan_radians>)
ORV_ONE_INPUT(sAtanpi, ha, Atan<atan_half_turns>)
ORV_TWO_INPUTS(sAtan2, ha, SAtan2)
ORV_TWO_INPUTS(sAtan2pi, ha, SAtan2pi)
