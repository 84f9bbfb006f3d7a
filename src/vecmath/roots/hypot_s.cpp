// sHypot: the method stands in hypot_s.h.
#include "vecmath/roots/hypot_s.h"

using namespace orv::vecmath;

ORV_TWO_INPUTS(sHypot, la, HypotSLA)
ORV_TWO_INPUTS(sHypot, ha, HypotSHA)
ORV_TWO_INPUTS(sHypot, ep, HypotSEP)
