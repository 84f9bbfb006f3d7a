// Written by the bench program cost_table; not edited by hand. Cycles per element on the scale of the fixed figures.
#ifndef ORV_FRAME_MEASURED_COSTS_H
#define ORV_FRAME_MEASURED_COSTS_H

#define ORV_COST_sFloor 1, 1, 1
#define ORV_COST_sFrac 1, 1, 1
#define ORV_COST_sNearbyInt 1, 1, 1
#define ORV_COST_sRint 1, 1, 1
#define ORV_COST_sRound 1, 1, 1
#define ORV_COST_sTrunc 1, 1, 1
#define ORV_COST_sAbs 1, 1, 1
#define ORV_COST_dCeil 1, 1, 1
#define ORV_COST_dFloor 1, 1, 1
#define ORV_COST_dFrac 1, 1, 1
#define ORV_COST_dNearbyInt 1, 1, 1
#define ORV_COST_dRint 1, 1, 1
#define ORV_COST_dRound 1, 1, 1
#define ORV_COST_dTrunc 1, 1, 1
#define ORV_COST_dAbs 1, 1, 1
#define ORV_COST_dSqr 1, 1, 1
#define ORV_COST_cConj 1, 1, 1
#define ORV_COST_zConj 1, 1, 1
#define ORV_COST_sSub 1, 1, 1
#define ORV_COST_sMul 1, 1, 1
#define ORV_COST_dAdd 1, 1, 1
#define ORV_COST_dSub 1, 1, 1
#define ORV_COST_dMul 1, 1, 1
#define ORV_COST_sCos 1, 1, 1
#define ORV_COST_sTan 1, 1, 1
#define ORV_COST_sSinpi 1, 1, 1
#define ORV_COST_sCospi 1, 1, 1
#define ORV_COST_sTanpi 1, 1, 1
#define ORV_COST_sSind 1, 1, 1
#define ORV_COST_sCosd 1, 1, 1
#define ORV_COST_sTand 1, 1, 1
#define ORV_COST_dCos 1, 1, 1
#define ORV_COST_dSinpi 1, 1, 1
#define ORV_COST_dCospi 1, 1, 1
#define ORV_COST_dTanpi 1, 1, 1
#define ORV_COST_dSind 1, 1, 1
#define ORV_COST_dCosd 1, 1, 1
#define ORV_COST_dTand 1, 1, 1
#define ORV_COST_sSinCos 1, 1, 1
#define ORV_COST_dSinCos 1, 1, 1
#define ORV_COST_sExpm1 1, 1, 1
#define ORV_COST_sLog1p 1, 1, 1
#define ORV_COST_sExp2 1, 1, 1
#define ORV_COST_sExp10 1, 1, 1
#define ORV_COST_sLog10 1, 1, 1
#define ORV_COST_sLog2 1, 1, 1
#define ORV_COST_sLogb 1, 1, 1
#define ORV_COST_dExpm1 1, 1, 1
#define ORV_COST_dLog1p 1, 1, 1
#define ORV_COST_dExp2 1, 1, 1
#define ORV_COST_dExp10 1, 1, 1
#define ORV_COST_dLog10 1, 1, 1
#define ORV_COST_dLog2 1, 1, 1
#define ORV_COST_dLogb 1, 1, 1

#endif
