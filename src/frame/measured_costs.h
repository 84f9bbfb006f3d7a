// Written by the bench program cost_table; not edited by hand. Cycles per element on the scale of the fixed figures.
#ifndef ORV_FRAME_MEASURED_COSTS_H
#define ORV_FRAME_MEASURED_COSTS_H

#define ORV_COST_sFloor 0.899, 0.899, 0.899
#define ORV_COST_sFrac 1.72, 1.72, 1.72
#define ORV_COST_sNearbyInt 0.63, 0.63, 0.63
#define ORV_COST_sRint 0.629, 0.629, 0.629
#define ORV_COST_sRound 1.51, 1.51, 1.51
#define ORV_COST_sTrunc 0.902, 0.902, 0.902
#define ORV_COST_sAbs 0.858, 0.858, 0.858
#define ORV_COST_dCeil 1.76, 1.76, 1.76
#define ORV_COST_dFloor 1.37, 1.37, 1.37
#define ORV_COST_dFrac 3.88, 3.88, 3.88
#define ORV_COST_dNearbyInt 1.27, 1.27, 1.27
#define ORV_COST_dRint 1.26, 1.26, 1.26
#define ORV_COST_dRound 2.99, 2.99, 2.99
#define ORV_COST_dTrunc 1.36, 1.36, 1.36
#define ORV_COST_dAbs 1.72, 1.72, 1.72
#define ORV_COST_dSqr 0.923, 0.923, 0.923
#define ORV_COST_cConj 0.923, 0.923, 0.923
#define ORV_COST_zConj 1.76, 1.76, 1.76
#define ORV_COST_sSub 0.738, 0.738, 0.738
#define ORV_COST_sMul 0.738, 0.738, 0.738
#define ORV_COST_dAdd 1.24, 1.24, 1.24
#define ORV_COST_dSub 1.28, 1.28, 1.28
#define ORV_COST_dMul 1.27, 1.27, 1.27
#define ORV_COST_sCos 7.99, 15.9, 5.71
#define ORV_COST_sTan 15, 17.1, 15
#define ORV_COST_sSinpi 11.9, 13.7, 4.04
#define ORV_COST_sCospi 13.4, 15.3, 4.38
#define ORV_COST_sTanpi 26.3, 27.5, 26.4
#define ORV_COST_sSind 13.8, 15.6, 4.8
#define ORV_COST_sCosd 15.5, 17.4, 5.13
#define ORV_COST_sTand 26, 27.3, 26
#define ORV_COST_dCos 29.8, 29.8, 14.3
#define ORV_COST_dSinpi 28.9, 32.1, 11
#define ORV_COST_dCospi 28.1, 32.4, 11.9
#define ORV_COST_dTanpi 54.3, 54.5, 26
#define ORV_COST_dSind 28.9, 32, 12.6
#define ORV_COST_dCosd 28.1, 32.4, 13.6
#define ORV_COST_dTand 53.8, 53.9, 25.6
#define ORV_COST_sSinCos 13.8, 24.7, 13.8
#define ORV_COST_dSinCos 45.7, 45.7, 32.3
#define ORV_COST_sExpm1 15.1, 15.1, 15.1
#define ORV_COST_sLog1p 14.7, 24.4, 7.71
#define ORV_COST_sExp2 5.65, 5.65, 5.65
#define ORV_COST_sExp10 6.9, 6.9, 6.9
#define ORV_COST_sLog10 8.2, 11.9, 4.3
#define ORV_COST_sLog2 7.44, 16, 4.16
#define ORV_COST_sLogb 1.74, 1.74, 1.74
#define ORV_COST_dExpm1 28.4, 30.6, 13.3
#define ORV_COST_dLog1p 35.8, 34.4, 22.8
#define ORV_COST_dExp2 13.1, 13.1, 13.1
#define ORV_COST_dExp10 16.8, 16.8, 16.8
#define ORV_COST_dLog10 19, 24.7, 19
#define ORV_COST_dLog2 18.4, 23.6, 14.4
#define ORV_COST_dLogb 3.57, 3.57, 3.57

#endif
