// The row list: every function of the vector math family, in the order of the exported tables.
//
// This header is read by the C++ compiler, the assembler, the header writer and the tests, so it holds macros and nothing
// else. A consumer hands a macro of its own to ORV_MATH_ROWS and ORV_MOVE_ROWS, which call it once a row:
//
//   ROW(type, function, shape, sharing, cost)
//
//   type      s, d, c or z: the element
//   function  the name between the type letter and the strided form's I
//   shape     the argument list:
//             ONE            n, a, y
//             TO_REAL        n, a, y with complex a and real y
//             TO_COMPLEX     n, a, y with real a and complex y
//             TWO            n, a, b, y
//             SCALAR         n, a, b, y with b one element by value
//             TWO_OUT        n, a, y, z
//             LINEAR         n, a, b, scalea, shifta, scaleb, shiftb, y
//             PACK_STRIDE    n, a, inca, y, flag with 64-bit n and inca
//             PACK_LIST      n, a, ma or ia, y, flag with 64-bit n
//             UNPACK_STRIDE  n, a, y, incy, flag with 64-bit n and incy
//             UNPACK_LIST    n, a, y, my or iy, flag with 64-bit n
//   sharing   which accuracies have a kernel in common: ALL one kernel, LA_HA and LA_EP those two, EACH none
//   cost      COST(la, ha, ep) for figures that are fixed, MEASURED(row) for those of measured_costs.h
//
// The tables are the math rows dense, the move rows, and the math rows strided: 440 in all.
#ifndef ORV_FRAME_KERNEL_TABLES_H
#define ORV_FRAME_KERNEL_TABLES_H

// A kernel is named after its row and the first accuracy that it serves, so sharing settles the three slots of a row.
#define ORV_SLOTS_ALL(kernel) kernel##_la, kernel##_la, kernel##_la
#define ORV_SLOTS_LA_HA(kernel) kernel##_la, kernel##_la, kernel##_ep
#define ORV_SLOTS_LA_EP(kernel) kernel##_la, kernel##_ha, kernel##_la
#define ORV_SLOTS_EACH(kernel) kernel##_la, kernel##_ha, kernel##_ep

// What follows a row's name in the names of its "LA" and "EP" entries, by type.
#define ORV_LA_SUFFIX_s _21
#define ORV_LA_SUFFIX_c _21
#define ORV_LA_SUFFIX_d _50
#define ORV_LA_SUFFIX_z _50
#define ORV_EP_SUFFIX_s _11
#define ORV_EP_SUFFIX_c _11
#define ORV_EP_SUFFIX_d _26
#define ORV_EP_SUFFIX_z _26

// clang-format off
#define ORV_MATH_ROWS(ROW) \
    ROW(s, Ceil,       ONE,        ALL,   COST(1.06, 1.06, 1.06))          \
    ROW(s, Floor,      ONE,        ALL,   MEASURED(sFloor))                \
    ROW(s, Frac,       ONE,        ALL,   MEASURED(sFrac))                 \
    ROW(s, NearbyInt,  ONE,        ALL,   MEASURED(sNearbyInt))            \
    ROW(s, Rint,       ONE,        ALL,   MEASURED(sRint))                 \
    ROW(s, Round,      ONE,        ALL,   MEASURED(sRound))                \
    ROW(s, Trunc,      ONE,        ALL,   MEASURED(sTrunc))                \
    ROW(s, Abs,        ONE,        ALL,   MEASURED(sAbs))                  \
    ROW(s, Inv,        ONE,        LA_HA, MEASURED(sInv))                  \
    ROW(s, Sqrt,       ONE,        EACH,  MEASURED(sSqrt))                 \
    ROW(s, InvSqrt,    ONE,        EACH,  MEASURED(sInvSqrt))              \
    ROW(s, Cbrt,       ONE,        EACH,  MEASURED(sCbrt))                 \
    ROW(s, InvCbrt,    ONE,        EACH,  MEASURED(sInvCbrt))              \
    ROW(s, Exp,        ONE,        EACH,  COST(5.667, 6.42, 3.633))        \
    ROW(s, Ln,         ONE,        EACH,  COST(6.823, 8.138, 4.498))       \
    ROW(s, Log10,      ONE,        EACH,  MEASURED(sLog10))                \
    ROW(s, Cos,        ONE,        EACH,  MEASURED(sCos))                  \
    ROW(s, Sin,        ONE,        EACH,  COST(7.451, 13.009, 5.954))      \
    ROW(s, Tan,        ONE,        LA_EP, MEASURED(sTan))                  \
    ROW(s, Acos,       ONE,        EACH,  MEASURED(sAcos))                 \
    ROW(s, Acosh,      ONE,        LA_HA, MEASURED(sAcosh))                \
    ROW(s, Asin,       ONE,        EACH,  MEASURED(sAsin))                 \
    ROW(s, Asinh,      ONE,        LA_HA, MEASURED(sAsinh))                \
    ROW(s, Atan,       ONE,        EACH,  MEASURED(sAtan))                 \
    ROW(s, Atanh,      ONE,        EACH,  MEASURED(sAtanh))                \
    ROW(s, Cosh,       ONE,        EACH,  MEASURED(sCosh))                 \
    ROW(s, Sinh,       ONE,        EACH,  MEASURED(sSinh))                 \
    ROW(s, Tanh,       ONE,        EACH,  MEASURED(sTanh))                 \
    ROW(s, Erf,        ONE,        EACH,  MEASURED(sErf))                  \
    ROW(s, Erfc,       ONE,        EACH,  MEASURED(sErfc))                 \
    ROW(s, ErfInv,     ONE,        EACH,  MEASURED(sErfInv))               \
    ROW(s, Sqr,        ONE,        ALL,   COST(0.37, 0.37, 0.37))          \
    ROW(s, Expm1,      ONE,        ALL,   MEASURED(sExpm1))                \
    ROW(s, Log1p,      ONE,        EACH,  MEASURED(sLog1p))                \
    ROW(s, Pow3o2,     ONE,        EACH,  MEASURED(sPow3o2))               \
    ROW(s, Pow2o3,     ONE,        EACH,  MEASURED(sPow2o3))               \
    ROW(s, ErfcInv,    ONE,        EACH,  MEASURED(sErfcInv))              \
    ROW(s, CdfNorm,    ONE,        EACH,  MEASURED(sCdfNorm))              \
    ROW(s, CdfNormInv, ONE,        EACH,  MEASURED(sCdfNormInv))           \
    ROW(s, LGamma,     ONE,        ALL,   COST(238.11, 238.11, 238.11))    \
    ROW(s, TGamma,     ONE,        ALL,   MEASURED(sTGamma))               \
    ROW(s, ExpInt1,    ONE,        LA_HA, MEASURED(sExpInt1))              \
    ROW(s, Sinpi,      ONE,        EACH,  MEASURED(sSinpi))                \
    ROW(s, Cospi,      ONE,        EACH,  MEASURED(sCospi))                \
    ROW(s, Tanpi,      ONE,        EACH,  MEASURED(sTanpi))                \
    ROW(s, Acospi,     ONE,        EACH,  MEASURED(sAcospi))               \
    ROW(s, Asinpi,     ONE,        EACH,  MEASURED(sAsinpi))               \
    ROW(s, Atanpi,     ONE,        EACH,  MEASURED(sAtanpi))               \
    ROW(s, Exp2,       ONE,        ALL,   MEASURED(sExp2))                 \
    ROW(s, Exp10,      ONE,        ALL,   MEASURED(sExp10))                \
    ROW(s, Log2,       ONE,        EACH,  MEASURED(sLog2))                 \
    ROW(s, Sind,       ONE,        EACH,  MEASURED(sSind))                 \
    ROW(s, Cosd,       ONE,        EACH,  MEASURED(sCosd))                 \
    ROW(s, Tand,       ONE,        EACH,  MEASURED(sTand))                 \
    ROW(s, Logb,       ONE,        ALL,   MEASURED(sLogb))                 \
    ROW(d, Ceil,       ONE,        ALL,   MEASURED(dCeil))                 \
    ROW(d, Floor,      ONE,        ALL,   MEASURED(dFloor))                \
    ROW(d, Frac,       ONE,        ALL,   MEASURED(dFrac))                 \
    ROW(d, NearbyInt,  ONE,        ALL,   MEASURED(dNearbyInt))            \
    ROW(d, Rint,       ONE,        ALL,   MEASURED(dRint))                 \
    ROW(d, Round,      ONE,        ALL,   MEASURED(dRound))                \
    ROW(d, Trunc,      ONE,        ALL,   MEASURED(dTrunc))                \
    ROW(d, Abs,        ONE,        ALL,   MEASURED(dAbs))                  \
    ROW(d, Inv,        ONE,        ALL,   MEASURED(dInv))                  \
    ROW(d, Sqrt,       ONE,        ALL,   MEASURED(dSqrt))                 \
    ROW(d, InvSqrt,    ONE,        LA_EP, MEASURED(dInvSqrt))              \
    ROW(d, Cbrt,       ONE,        LA_EP, MEASURED(dCbrt))                 \
    ROW(d, InvCbrt,    ONE,        ALL,   MEASURED(dInvCbrt))              \
    ROW(d, Exp,        ONE,        EACH,  COST(11.07, 16.065, 8.56))       \
    ROW(d, Ln,         ONE,        LA_HA, COST(18, 18, 11.07))             \
    ROW(d, Log10,      ONE,        LA_EP, MEASURED(dLog10))                \
    ROW(d, Cos,        ONE,        LA_HA, MEASURED(dCos))                  \
    ROW(d, Sin,        ONE,        EACH,  COST(20.147, 21.88, 14.681))     \
    ROW(d, Tan,        ONE,        EACH,  COST(23.031, 60.573, 20.467))    \
    ROW(d, Acos,       ONE,        EACH,  MEASURED(dAcos))                 \
    ROW(d, Acosh,      ONE,        LA_EP, MEASURED(dAcosh))                \
    ROW(d, Asin,       ONE,        EACH,  MEASURED(dAsin))                 \
    ROW(d, Asinh,      ONE,        LA_EP, MEASURED(dAsinh))                \
    ROW(d, Atan,       ONE,        LA_HA, MEASURED(dAtan))                 \
    ROW(d, Atanh,      ONE,        EACH,  MEASURED(dAtanh))                \
    ROW(d, Cosh,       ONE,        EACH,  MEASURED(dCosh))                 \
    ROW(d, Sinh,       ONE,        LA_EP, MEASURED(dSinh))                 \
    ROW(d, Tanh,       ONE,        LA_EP, MEASURED(dTanh))                 \
    ROW(d, Erf,        ONE,        EACH,  COST(24.848, 44.1, 21.6))        \
    ROW(d, Erfc,       ONE,        ALL,   MEASURED(dErfc))                 \
    ROW(d, ErfInv,     ONE,        EACH,  MEASURED(dErfInv))               \
    ROW(d, Sqr,        ONE,        ALL,   MEASURED(dSqr))                  \
    ROW(d, Expm1,      ONE,        EACH,  MEASURED(dExpm1))                \
    ROW(d, Log1p,      ONE,        EACH,  MEASURED(dLog1p))                \
    ROW(d, Pow3o2,     ONE,        EACH,  MEASURED(dPow3o2))               \
    ROW(d, Pow2o3,     ONE,        EACH,  MEASURED(dPow2o3))               \
    ROW(d, ErfcInv,    ONE,        EACH,  MEASURED(dErfcInv))              \
    ROW(d, CdfNorm,    ONE,        EACH,  MEASURED(dCdfNorm))              \
    ROW(d, CdfNormInv, ONE,        EACH,  MEASURED(dCdfNormInv))           \
    ROW(d, LGamma,     ONE,        ALL,   COST(319.85, 319.85, 319.85))    \
    ROW(d, TGamma,     ONE,        ALL,   COST(423.3, 423.3, 423.3))       \
    ROW(d, ExpInt1,    ONE,        LA_HA, MEASURED(dExpInt1))              \
    ROW(d, Sinpi,      ONE,        EACH,  MEASURED(dSinpi))                \
    ROW(d, Cospi,      ONE,        EACH,  MEASURED(dCospi))                \
    ROW(d, Tanpi,      ONE,        EACH,  MEASURED(dTanpi))                \
    ROW(d, Acospi,     ONE,        EACH,  MEASURED(dAcospi))               \
    ROW(d, Asinpi,     ONE,        EACH,  MEASURED(dAsinpi))               \
    ROW(d, Atanpi,     ONE,        EACH,  MEASURED(dAtanpi))               \
    ROW(d, Exp2,       ONE,        ALL,   MEASURED(dExp2))                 \
    ROW(d, Exp10,      ONE,        ALL,   MEASURED(dExp10))                \
    ROW(d, Log2,       ONE,        EACH,  MEASURED(dLog2))                 \
    ROW(d, Sind,       ONE,        EACH,  MEASURED(dSind))                 \
    ROW(d, Cosd,       ONE,        EACH,  MEASURED(dCosd))                 \
    ROW(d, Tand,       ONE,        EACH,  MEASURED(dTand))                 \
    ROW(d, Logb,       ONE,        ALL,   MEASURED(dLogb))                 \
    ROW(c, Cos,        ONE,        ALL,   MEASURED(cCos))                  \
    ROW(c, Sin,        ONE,        ALL,   MEASURED(cSin))                  \
    ROW(c, Tan,        ONE,        ALL,   MEASURED(cTan))                  \
    ROW(c, Cosh,       ONE,        ALL,   MEASURED(cCosh))                 \
    ROW(c, Sinh,       ONE,        ALL,   MEASURED(cSinh))                 \
    ROW(c, Tanh,       ONE,        ALL,   MEASURED(cTanh))                 \
    ROW(c, Acos,       ONE,        ALL,   MEASURED(cAcos))                 \
    ROW(c, Asin,       ONE,        ALL,   COST(1223.63, 1223.63, 1223.63)) \
    ROW(c, Atan,       ONE,        ALL,   MEASURED(cAtan))                 \
    ROW(c, Acosh,      ONE,        ALL,   MEASURED(cAcosh))                \
    ROW(c, Asinh,      ONE,        ALL,   MEASURED(cAsinh))                \
    ROW(c, Atanh,      ONE,        ALL,   MEASURED(cAtanh))                \
    ROW(c, Exp,        ONE,        LA_EP, MEASURED(cExp))                  \
    ROW(c, Ln,         ONE,        EACH,  MEASURED(cLn))                   \
    ROW(c, Log10,      ONE,        ALL,   MEASURED(cLog10))                \
    ROW(c, Sqrt,       ONE,        LA_EP, MEASURED(cSqrt))                 \
    ROW(c, Conj,       ONE,        ALL,   MEASURED(cConj))                 \
    ROW(z, Cos,        ONE,        ALL,   MEASURED(zCos))                  \
    ROW(z, Sin,        ONE,        ALL,   MEASURED(zSin))                  \
    ROW(z, Tan,        ONE,        ALL,   MEASURED(zTan))                  \
    ROW(z, Cosh,       ONE,        ALL,   MEASURED(zCosh))                 \
    ROW(z, Sinh,       ONE,        ALL,   MEASURED(zSinh))                 \
    ROW(z, Tanh,       ONE,        ALL,   MEASURED(zTanh))                 \
    ROW(z, Acos,       ONE,        ALL,   MEASURED(zAcos))                 \
    ROW(z, Asin,       ONE,        ALL,   MEASURED(zAsin))                 \
    ROW(z, Atan,       ONE,        ALL,   MEASURED(zAtan))                 \
    ROW(z, Acosh,      ONE,        ALL,   MEASURED(zAcosh))                \
    ROW(z, Asinh,      ONE,        ALL,   MEASURED(zAsinh))                \
    ROW(z, Atanh,      ONE,        ALL,   MEASURED(zAtanh))                \
    ROW(z, Exp,        ONE,        LA_EP, MEASURED(zExp))                  \
    ROW(z, Ln,         ONE,        LA_HA, MEASURED(zLn))                   \
    ROW(z, Log10,      ONE,        ALL,   MEASURED(zLog10))                \
    ROW(z, Sqrt,       ONE,        ALL,   MEASURED(zSqrt))                 \
    ROW(z, Conj,       ONE,        ALL,   MEASURED(zConj))                 \
    ROW(c, CIS,        TO_COMPLEX, EACH,  MEASURED(cCIS))                  \
    ROW(z, CIS,        TO_COMPLEX, EACH,  MEASURED(zCIS))                  \
    ROW(c, Abs,        TO_REAL,    EACH,  MEASURED(cAbs))                  \
    ROW(c, Arg,        TO_REAL,    EACH,  MEASURED(cArg))                  \
    ROW(z, Abs,        TO_REAL,    EACH,  MEASURED(zAbs))                  \
    ROW(z, Arg,        TO_REAL,    EACH,  MEASURED(zArg))                  \
    ROW(s, Div,        TWO,        ALL,   MEASURED(sDiv))                  \
    ROW(s, Pow,        TWO,        LA_HA, MEASURED(sPow))                  \
    ROW(s, Atan2,      TWO,        EACH,  MEASURED(sAtan2))                \
    ROW(s, Hypot,      TWO,        EACH,  MEASURED(sHypot))                \
    ROW(s, Add,        TWO,        ALL,   COST(0.89, 0.89, 0.89))          \
    ROW(s, Sub,        TWO,        ALL,   MEASURED(sSub))                  \
    ROW(s, Mul,        TWO,        ALL,   MEASURED(sMul))                  \
    ROW(s, Atan2pi,    TWO,        EACH,  MEASURED(sAtan2pi))              \
    ROW(s, CopySign,   TWO,        ALL,   MEASURED(sCopySign))             \
    ROW(s, NextAfter,  TWO,        ALL,   MEASURED(sNextAfter))            \
    ROW(s, Fdim,       TWO,        ALL,   MEASURED(sFdim))                 \
    ROW(s, Fmax,       TWO,        ALL,   MEASURED(sFmax))                 \
    ROW(s, Fmin,       TWO,        ALL,   MEASURED(sFmin))                 \
    ROW(s, MaxMag,     TWO,        ALL,   MEASURED(sMaxMag))               \
    ROW(s, MinMag,     TWO,        ALL,   MEASURED(sMinMag))               \
    ROW(s, Powr,       TWO,        LA_HA, MEASURED(sPowr))                 \
    ROW(s, Remainder,  TWO,        ALL,   MEASURED(sRemainder))            \
    ROW(s, Fmod,       TWO,        ALL,   MEASURED(sFmod))                 \
    ROW(d, Div,        TWO,        ALL,   MEASURED(dDiv))                  \
    ROW(d, Pow,        TWO,        LA_HA, COST(53.66, 53.66, 29.628))      \
    ROW(d, Atan2,      TWO,        EACH,  MEASURED(dAtan2))                \
    ROW(d, Hypot,      TWO,        EACH,  MEASURED(dHypot))                \
    ROW(d, Add,        TWO,        ALL,   MEASURED(dAdd))                  \
    ROW(d, Sub,        TWO,        ALL,   MEASURED(dSub))                  \
    ROW(d, Mul,        TWO,        ALL,   MEASURED(dMul))                  \
    ROW(d, Atan2pi,    TWO,        EACH,  MEASURED(dAtan2pi))              \
    ROW(d, CopySign,   TWO,        ALL,   MEASURED(dCopySign))             \
    ROW(d, NextAfter,  TWO,        ALL,   MEASURED(dNextAfter))            \
    ROW(d, Fdim,       TWO,        ALL,   MEASURED(dFdim))                 \
    ROW(d, Fmax,       TWO,        ALL,   MEASURED(dFmax))                 \
    ROW(d, Fmin,       TWO,        ALL,   MEASURED(dFmin))                 \
    ROW(d, MaxMag,     TWO,        ALL,   MEASURED(dMaxMag))               \
    ROW(d, MinMag,     TWO,        ALL,   MEASURED(dMinMag))               \
    ROW(d, Powr,       TWO,        EACH,  MEASURED(dPowr))                 \
    ROW(d, Remainder,  TWO,        ALL,   MEASURED(dRemainder))            \
    ROW(d, Fmod,       TWO,        ALL,   MEASURED(dFmod))                 \
    ROW(c, Div,        TWO,        LA_HA, MEASURED(cDiv))                  \
    ROW(c, Pow,        TWO,        ALL,   MEASURED(cPow))                  \
    ROW(c, Add,        TWO,        LA_HA, MEASURED(cAdd))                  \
    ROW(c, Sub,        TWO,        LA_HA, MEASURED(cSub))                  \
    ROW(c, Mul,        TWO,        LA_HA, MEASURED(cMul))                  \
    ROW(c, MulByConj,  TWO,        LA_HA, MEASURED(cMulByConj))            \
    ROW(z, Div,        TWO,        LA_HA, MEASURED(zDiv))                  \
    ROW(z, Pow,        TWO,        ALL,   COST(1023.85, 1023.85, 1023.85)) \
    ROW(z, Add,        TWO,        LA_HA, MEASURED(zAdd))                  \
    ROW(z, Sub,        TWO,        LA_HA, MEASURED(zSub))                  \
    ROW(z, Mul,        TWO,        LA_HA, COST(80.339, 80.339, 16.969))    \
    ROW(z, MulByConj,  TWO,        LA_HA, MEASURED(zMulByConj))            \
    ROW(c, Powx,       SCALAR,     ALL,   MEASURED(cPowx))                 \
    ROW(z, Powx,       SCALAR,     ALL,   MEASURED(zPowx))                 \
    ROW(s, Powx,       SCALAR,     EACH,  MEASURED(sPowx))                 \
    ROW(d, Powx,       SCALAR,     EACH,  MEASURED(dPowx))                 \
    ROW(s, SinCos,     TWO_OUT,    LA_EP, MEASURED(sSinCos))               \
    ROW(s, Modf,       TWO_OUT,    ALL,   MEASURED(sModf))                 \
    ROW(d, SinCos,     TWO_OUT,    LA_HA, MEASURED(dSinCos))               \
    ROW(d, Modf,       TWO_OUT,    ALL,   MEASURED(dModf))                 \
    ROW(s, LinearFrac, LINEAR,     ALL,   MEASURED(sLinearFrac))           \
    ROW(d, LinearFrac, LINEAR,     ALL,   MEASURED(dLinearFrac))

#define ORV_MOVE_ROWS(ROW) \
    ROW(s, PackI,      PACK_STRIDE, ALL,   COST(1111, 1111, 1111))   \
    ROW(d, PackI,      PACK_STRIDE, ALL,   COST(1111, 1111, 1111))   \
    ROW(c, PackI,      PACK_STRIDE, ALL,   COST(1111, 1111, 1111))   \
    ROW(z, PackI,      PACK_STRIDE, ALL,   COST(1111, 1111, 1111))   \
    ROW(s, PackM,      PACK_LIST,  ALL,   COST(1111, 1111, 1111))   \
    ROW(d, PackM,      PACK_LIST,  ALL,   COST(1111, 1111, 1111))   \
    ROW(c, PackM,      PACK_LIST,  ALL,   COST(1111, 1111, 1111))   \
    ROW(z, PackM,      PACK_LIST,  ALL,   COST(1111, 1111, 1111))   \
    ROW(s, PackV,      PACK_LIST,  ALL,   COST(1111, 1111, 1111))   \
    ROW(d, PackV,      PACK_LIST,  ALL,   COST(1111, 1111, 1111))   \
    ROW(c, PackV,      PACK_LIST,  ALL,   COST(1111, 1111, 1111))   \
    ROW(z, PackV,      PACK_LIST,  ALL,   COST(1111, 1111, 1111))   \
    ROW(s, UnpackI,    UNPACK_STRIDE, ALL,   COST(1111, 1111, 1111)) \
    ROW(d, UnpackI,    UNPACK_STRIDE, ALL,   COST(1111, 1111, 1111)) \
    ROW(c, UnpackI,    UNPACK_STRIDE, ALL,   COST(1111, 1111, 1111)) \
    ROW(z, UnpackI,    UNPACK_STRIDE, ALL,   COST(1111, 1111, 1111)) \
    ROW(s, UnpackM,    UNPACK_LIST, ALL,   COST(1111, 1111, 1111))   \
    ROW(d, UnpackM,    UNPACK_LIST, ALL,   COST(1111, 1111, 1111))   \
    ROW(c, UnpackM,    UNPACK_LIST, ALL,   COST(1111, 1111, 1111))   \
    ROW(z, UnpackM,    UNPACK_LIST, ALL,   COST(1111, 1111, 1111))   \
    ROW(s, UnpackV,    UNPACK_LIST, ALL,   COST(1111, 1111, 1111))   \
    ROW(d, UnpackV,    UNPACK_LIST, ALL,   COST(1111, 1111, 1111))   \
    ROW(c, UnpackV,    UNPACK_LIST, ALL,   COST(1111, 1111, 1111))   \
    ROW(z, UnpackV,    UNPACK_LIST, ALL,   COST(1111, 1111, 1111))
// clang-format on

#endif
