// Written by the bench program cost_table; not edited by hand. Cycles per element on the scale of the fixed figures.
#ifndef ORV_FRAME_MEASURED_COSTS_H
#define ORV_FRAME_MEASURED_COSTS_H

#define ORV_COST_sFloor 0.792, 0.792, 0.792
#define ORV_COST_sFrac 1.51, 1.51, 1.51
#define ORV_COST_sNearbyInt 0.552, 0.552, 0.552
#define ORV_COST_sRint 0.553, 0.553, 0.553
#define ORV_COST_sRound 1.35, 1.35, 1.35
#define ORV_COST_sTrunc 0.789, 0.789, 0.789
#define ORV_COST_sAbs 0.751, 0.751, 0.751
#define ORV_COST_sLog10 7.99, 11.5, 4.18
#define ORV_COST_sCos 8.19, 16.2, 5.84
#define ORV_COST_sTan 15.4, 17.5, 15.4
#define ORV_COST_sExpm1 14.7, 14.7, 14.7
#define ORV_COST_sLog1p 14.2, 23.7, 7.49
#define ORV_COST_sSinpi 12.2, 14, 4.17
#define ORV_COST_sCospi 13.8, 15.7, 4.49
#define ORV_COST_sTanpi 27, 28, 27.1
#define ORV_COST_sExp2 5.43, 5.43, 5.43
#define ORV_COST_sExp10 6.58, 6.58, 6.58
#define ORV_COST_sLog2 7.21, 15.4, 4.08
#define ORV_COST_sSind 14.3, 16, 4.88
#define ORV_COST_sCosd 16, 17.9, 5.24
#define ORV_COST_sTand 26.6, 28, 26.7
#define ORV_COST_sLogb 1.62, 1.62, 1.62
#define ORV_COST_dCeil 1.53, 1.53, 1.53
#define ORV_COST_dFloor 1.2, 1.2, 1.2
#define ORV_COST_dFrac 3.13, 3.13, 3.13
#define ORV_COST_dNearbyInt 1.11, 1.11, 1.11
#define ORV_COST_dRint 1.12, 1.12, 1.12
#define ORV_COST_dRound 2.53, 2.53, 2.53
#define ORV_COST_dTrunc 1.19, 1.19, 1.19
#define ORV_COST_dAbs 1.49, 1.49, 1.49
#define ORV_COST_dLog10 17.5, 23, 17.5
#define ORV_COST_dCos 30.5, 30.5, 14.7
#define ORV_COST_dSqr 0.812, 0.812, 0.812
#define ORV_COST_dExpm1 27.1, 28.8, 12.3
#define ORV_COST_dLog1p 32.6, 32.6, 21.2
#define ORV_COST_dSinpi 29.6, 32.9, 11.3
#define ORV_COST_dCospi 29, 33.1, 12.2
#define ORV_COST_dTanpi 55.6, 55.5, 26.4
#define ORV_COST_dExp2 12.2, 12.2, 12.2
#define ORV_COST_dExp10 15.7, 15.7, 15.7
#define ORV_COST_dLog2 16.8, 21.7, 13.5
#define ORV_COST_dSind 29.8, 33, 12.9
#define ORV_COST_dCosd 29, 33.1, 14
#define ORV_COST_dTand 55.4, 55.6, 26.4
#define ORV_COST_dLogb 3.37, 3.37, 3.37
#define ORV_COST_cConj 0.809, 0.809, 0.809
#define ORV_COST_zConj 1.53, 1.53, 1.53
#define ORV_COST_sSub 0.655, 0.655, 0.655
#define ORV_COST_sMul 0.656, 0.656, 0.656
#define ORV_COST_dAdd 1.11, 1.11, 1.11
#define ORV_COST_dSub 1.12, 1.12, 1.12
#define ORV_COST_dMul 1.11, 1.11, 1.11
#define ORV_COST_sSinCos 14.2, 25.5, 14.2
#define ORV_COST_dSinCos 47.5, 47.5, 22.5

#endif
