// Written by the bench program cost_table; not edited by hand. Cycles per element on the scale of the fixed figures.
#ifndef ORV_FRAME_MEASURED_COSTS_H
#define ORV_FRAME_MEASURED_COSTS_H

#define ORV_COST_sFloor 0.795, 0.795, 0.795
#define ORV_COST_sFrac 1.65, 1.65, 1.65
#define ORV_COST_sNearbyInt 0.622, 0.622, 0.622
#define ORV_COST_sRint 0.666, 0.666, 0.666
#define ORV_COST_sRound 1.6, 1.6, 1.6
#define ORV_COST_sTrunc 0.766, 0.766, 0.766
#define ORV_COST_sAbs 0.804, 0.804, 0.804
#define ORV_COST_sLog10 8.88, 12.1, 4.45
#define ORV_COST_sCos 7.21, 15.6, 5.41
#define ORV_COST_sTan 14.6, 16.6, 14.6
#define ORV_COST_sExpm1 16.1, 16.1, 16.1
#define ORV_COST_sLog1p 13.7, 23.9, 7.06
#define ORV_COST_sSinpi 12.6, 14, 4.07
#define ORV_COST_sCospi 13.5, 15, 4.22
#define ORV_COST_sTanpi 25.1, 26.4, 25.1
#define ORV_COST_sExp2 5.81, 5.81, 5.81
#define ORV_COST_sExp10 7.19, 7.19, 7.19
#define ORV_COST_sLog2 8.35, 16.7, 4.44
#define ORV_COST_sSind 14.3, 15.9, 4.9
#define ORV_COST_sCosd 15.5, 17.7, 4.96
#define ORV_COST_sTand 25.7, 26.9, 25.7
#define ORV_COST_sLogb 1.98, 1.98, 1.98
#define ORV_COST_dCeil 1.38, 1.38, 1.38
#define ORV_COST_dFloor 1.41, 1.41, 1.41
#define ORV_COST_dFrac 3.64, 3.64, 3.64
#define ORV_COST_dNearbyInt 1.3, 1.3, 1.3
#define ORV_COST_dRint 1.34, 1.34, 1.34
#define ORV_COST_dRound 3.06, 3.06, 3.06
#define ORV_COST_dTrunc 1.36, 1.36, 1.36
#define ORV_COST_dAbs 1.63, 1.63, 1.63
#define ORV_COST_dLog10 17.8, 22.8, 17.8
#define ORV_COST_dCos 29.6, 29.6, 13.6
#define ORV_COST_dSqr 0.861, 0.861, 0.861
#define ORV_COST_dExpm1 27.7, 29.2, 13.4
#define ORV_COST_dLog1p 32.3, 32.3, 21.2
#define ORV_COST_dSinpi 28.6, 32.4, 11.3
#define ORV_COST_dCospi 35.3, 32.1, 15.6
#define ORV_COST_dTanpi 53.1, 52.6, 22.4
#define ORV_COST_dExp2 12.4, 12.4, 12.4
#define ORV_COST_dExp10 15.8, 15.8, 15.8
#define ORV_COST_dLog2 21, 20.9, 14.3
#define ORV_COST_dSind 28.5, 32.5, 12.8
#define ORV_COST_dCosd 27.5, 32.2, 13.1
#define ORV_COST_dTand 52.8, 53.3, 23.3
#define ORV_COST_dLogb 4.32, 4.32, 4.32
#define ORV_COST_cConj 0.99, 0.99, 0.99
#define ORV_COST_zConj 1.68, 1.68, 1.68
#define ORV_COST_sSub 0.574, 0.574, 0.574
#define ORV_COST_sMul 0.606, 0.606, 0.606
#define ORV_COST_dAdd 1.06, 1.06, 1.06
#define ORV_COST_dSub 1.09, 1.09, 1.09
#define ORV_COST_dMul 1.14, 1.14, 1.14
#define ORV_COST_sSinCos 13.6, 24.2, 13.6
#define ORV_COST_dSinCos 45.6, 45.6, 20.9

#define ORV_COST_sPow3o2 8, 8, 4
#define ORV_COST_sPow2o3 9, 9, 4
#define ORV_COST_dPow3o2 20, 20, 13
#define ORV_COST_dPow2o3 22, 22, 18
#define ORV_COST_sPow 25, 25, 13
#define ORV_COST_sPowr 25, 25, 13
#define ORV_COST_dPowr 36, 36, 26
#define ORV_COST_sPowx 25, 25, 13
#define ORV_COST_dPowx 36, 36, 26

#endif
