// The row list: every function of the vector math family, in the order of the exported tables.
//
// This header is read by the C++ compiler, the assembler, the header writer and the tests, so it holds macros and nothing
// else. A consumer hands a macro of its own to ORV_MATH_ROWS and ORV_MOVE_ROWS, which call it once a row:
//
//   ROW(mark, type, function, shape, sharing, cost)
//
//   mark      HERE, or LATER while the row's kernels are not written: such a row keeps its place in the tables, holds
//             null pointers and exports no name. Marks only ever turn from LATER to HERE.
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
    ROW(HERE,  s, Ceil,       ONE,        ALL,   COST(1.06, 1.06, 1.06))          \
    ROW(HERE,  s, Floor,      ONE,        ALL,   MEASURED(sFloor))                \
    ROW(HERE,  s, Frac,       ONE,        ALL,   MEASURED(sFrac))                 \
    ROW(HERE,  s, NearbyInt,  ONE,        ALL,   MEASURED(sNearbyInt))            \
    ROW(HERE,  s, Rint,       ONE,        ALL,   MEASURED(sRint))                 \
    ROW(HERE,  s, Round,      ONE,        ALL,   MEASURED(sRound))                \
    ROW(HERE,  s, Trunc,      ONE,        ALL,   MEASURED(sTrunc))                \
    ROW(HERE,  s, Abs,        ONE,        ALL,   MEASURED(sAbs))                  \
    ROW(HERE,  s, Inv,        ONE,        LA_HA, MEASURED(sInv))                  \
    ROW(HERE,  s, Sqrt,       ONE,        EACH,  MEASURED(sSqrt))                 \
    ROW(HERE,  s, InvSqrt,    ONE,        EACH,  MEASURED(sInvSqrt))              \
    ROW(HERE,  s, Cbrt,       ONE,        EACH,  MEASURED(sCbrt))                 \
    ROW(HERE,  s, InvCbrt,    ONE,        EACH,  MEASURED(sInvCbrt))              \
    ROW(HERE,  s, Exp,        ONE,        EACH,  COST(5.667, 6.42, 3.633))        \
    ROW(HERE,  s, Ln,         ONE,        EACH,  COST(6.823, 8.138, 4.498))       \
    ROW(HERE,  s, Log10,      ONE,        EACH,  MEASURED(sLog10))                \
    ROW(HERE,  s, Cos,        ONE,        EACH,  MEASURED(sCos))                  \
    ROW(HERE,  s, Sin,        ONE,        EACH,  COST(7.451, 13.009, 5.954))      \
    ROW(HERE,  s, Tan,        ONE,        LA_EP, MEASURED(sTan))                  \
    ROW(HERE,  s, Acos,       ONE,        EACH,  MEASURED(sAcos))                 \
    ROW(HERE,  s, Acosh,      ONE,        LA_HA, MEASURED(sAcosh))                \
    ROW(HERE,  s, Asin,       ONE,        EACH,  MEASURED(sAsin))                 \
    ROW(HERE,  s, Asinh,      ONE,        LA_HA, MEASURED(sAsinh))                \
    ROW(HERE,  s, Atan,       ONE,        EACH,  MEASURED(sAtan))                 \
    ROW(HERE,  s, Atanh,      ONE,        EACH,  MEASURED(sAtanh))                \
    ROW(HERE,  s, Cosh,       ONE,        EACH,  MEASURED(sCosh))                 \
    ROW(HERE,  s, Sinh,       ONE,        EACH,  MEASURED(sSinh))                 \
    ROW(HERE,  s, Tanh,       ONE,        EACH,  MEASURED(sTanh))                 \
    ROW(HERE,  s, Erf,        ONE,        EACH,  MEASURED(sErf))                  \
    ROW(HERE,  s, Erfc,       ONE,        EACH,  MEASURED(sErfc))                 \
    ROW(HERE,  s, ErfInv,     ONE,        EACH,  MEASURED(sErfInv))               \
    ROW(HERE,  s, Sqr,        ONE,        ALL,   COST(0.37, 0.37, 0.37))          \
    ROW(HERE,  s, Expm1,      ONE,        ALL,   MEASURED(sExpm1))                \
    ROW(HERE,  s, Log1p,      ONE,        EACH,  MEASURED(sLog1p))                \
    ROW(HERE,  s, Pow3o2,     ONE,        EACH,  MEASURED(sPow3o2))               \
    ROW(HERE,  s, Pow2o3,     ONE,        EACH,  MEASURED(sPow2o3))               \
    ROW(HERE,  s, ErfcInv,    ONE,        EACH,  MEASURED(sErfcInv))              \
    ROW(HERE,  s, CdfNorm,    ONE,        EACH,  MEASURED(sCdfNorm))              \
    ROW(HERE,  s, CdfNormInv, ONE,        EACH,  MEASURED(sCdfNormInv))           \
    ROW(HERE,  s, LGamma,     ONE,        ALL,   COST(238.11, 238.11, 238.11))    \
    ROW(HERE,  s, TGamma,     ONE,        ALL,   MEASURED(sTGamma))               \
    ROW(HERE,  s, ExpInt1,    ONE,        LA_HA, MEASURED(sExpInt1))              \
    ROW(HERE,  s, Sinpi,      ONE,        EACH,  MEASURED(sSinpi))                \
    ROW(HERE,  s, Cospi,      ONE,        EACH,  MEASURED(sCospi))                \
    ROW(HERE,  s, Tanpi,      ONE,        EACH,  MEASURED(sTanpi))                \
    ROW(HERE,  s, Acospi,     ONE,        EACH,  MEASURED(sAcospi))               \
    ROW(HERE,  s, Asinpi,     ONE,        EACH,  MEASURED(sAsinpi))               \
    ROW(HERE,  s, Atanpi,     ONE,        EACH,  MEASURED(sAtanpi))               \
    ROW(HERE,  s, Exp2,       ONE,        ALL,   MEASURED(sExp2))                 \
    ROW(HERE,  s, Exp10,      ONE,        ALL,   MEASURED(sExp10))                \
    ROW(HERE,  s, Log2,       ONE,        EACH,  MEASURED(sLog2))                 \
    ROW(HERE,  s, Sind,       ONE,        EACH,  MEASURED(sSind))                 \
    ROW(HERE,  s, Cosd,       ONE,        EACH,  MEASURED(sCosd))                 \
    ROW(HERE,  s, Tand,       ONE,        EACH,  MEASURED(sTand))                 \
    ROW(HERE,  s, Logb,       ONE,        ALL,   MEASURED(sLogb))                 \
    ROW(HERE,  d, Ceil,       ONE,        ALL,   MEASURED(dCeil))                 \
    ROW(HERE,  d, Floor,      ONE,        ALL,   MEASURED(dFloor))                \
    ROW(HERE,  d, Frac,       ONE,        ALL,   MEASURED(dFrac))                 \
    ROW(HERE,  d, NearbyInt,  ONE,        ALL,   MEASURED(dNearbyInt))            \
    ROW(HERE,  d, Rint,       ONE,        ALL,   MEASURED(dRint))                 \
    ROW(HERE,  d, Round,      ONE,        ALL,   MEASURED(dRound))                \
    ROW(HERE,  d, Trunc,      ONE,        ALL,   MEASURED(dTrunc))                \
    ROW(HERE,  d, Abs,        ONE,        ALL,   MEASURED(dAbs))                  \
    ROW(HERE,  d, Inv,        ONE,        ALL,   MEASURED(dInv))                  \
    ROW(HERE,  d, Sqrt,       ONE,        ALL,   MEASURED(dSqrt))                 \
    ROW(HERE,  d, InvSqrt,    ONE,        LA_EP, MEASURED(dInvSqrt))              \
    ROW(HERE,  d, Cbrt,       ONE,        LA_EP, MEASURED(dCbrt))                 \
    ROW(HERE,  d, InvCbrt,    ONE,        ALL,   MEASURED(dInvCbrt))              \
    ROW(HERE,  d, Exp,        ONE,        EACH,  COST(11.07, 16.065, 8.56))       \
    ROW(HERE,  d, Ln,         ONE,        LA_HA, COST(18, 18, 11.07))             \
    ROW(HERE,  d, Log10,      ONE,        LA_EP, MEASURED(dLog10))                \
    ROW(HERE,  d, Cos,        ONE,        LA_HA, MEASURED(dCos))                  \
    ROW(HERE,  d, Sin,        ONE,        EACH,  COST(20.147, 21.88, 14.681))     \
    ROW(HERE,  d, Tan,        ONE,        EACH,  COST(23.031, 60.573, 20.467))    \
    ROW(HERE,  d, Acos,       ONE,        EACH,  MEASURED(dAcos))                 \
    ROW(HERE,  d, Acosh,      ONE,        LA_EP, MEASURED(dAcosh))                \
    ROW(HERE,  d, Asin,       ONE,        EACH,  MEASURED(dAsin))                 \
    ROW(HERE,  d, Asinh,      ONE,        LA_EP, MEASURED(dAsinh))                \
    ROW(HERE,  d, Atan,       ONE,        LA_HA, MEASURED(dAtan))                 \
    ROW(HERE,  d, Atanh,      ONE,        EACH,  MEASURED(dAtanh))                \
    ROW(HERE,  d, Cosh,       ONE,        EACH,  MEASURED(dCosh))                 \
    ROW(HERE,  d, Sinh,       ONE,        LA_EP, MEASURED(dSinh))                 \
    ROW(HERE,  d, Tanh,       ONE,        LA_EP, MEASURED(dTanh))                 \
    ROW(HERE,  d, Erf,        ONE,        EACH,  COST(24.848, 44.1, 21.6))        \
    ROW(HERE,  d, Erfc,       ONE,        ALL,   MEASURED(dErfc))                 \
    ROW(HERE,  d, ErfInv,     ONE,        EACH,  MEASURED(dErfInv))               \
    ROW(HERE,  d, Sqr,        ONE,        ALL,   MEASURED(dSqr))                  \
    ROW(HERE,  d, Expm1,      ONE,        EACH,  MEASURED(dExpm1))                \
    ROW(HERE,  d, Log1p,      ONE,        EACH,  MEASURED(dLog1p))                \
    ROW(HERE,  d, Pow3o2,     ONE,        EACH,  MEASURED(dPow3o2))               \
    ROW(HERE,  d, Pow2o3,     ONE,        EACH,  MEASURED(dPow2o3))               \
    ROW(HERE,  d, ErfcInv,    ONE,        EACH,  MEASURED(dErfcInv))              \
    ROW(HERE,  d, CdfNorm,    ONE,        EACH,  MEASURED(dCdfNorm))              \
    ROW(HERE,  d, CdfNormInv, ONE,        EACH,  MEASURED(dCdfNormInv))           \
    ROW(HERE,  d, LGamma,     ONE,        ALL,   COST(319.85, 319.85, 319.85))    \
    ROW(HERE,  d, TGamma,     ONE,        ALL,   COST(423.3, 423.3, 423.3))       \
    ROW(HERE,  d, ExpInt1,    ONE,        LA_HA, MEASURED(dExpInt1))              \
    ROW(HERE,  d, Sinpi,      ONE,        EACH,  MEASURED(dSinpi))                \
    ROW(HERE,  d, Cospi,      ONE,        EACH,  MEASURED(dCospi))                \
    ROW(HERE,  d, Tanpi,      ONE,        EACH,  MEASURED(dTanpi))                \
    ROW(HERE,  d, Acospi,     ONE,        EACH,  MEASURED(dAcospi))               \
    ROW(HERE,  d, Asinpi,     ONE,        EACH,  MEASURED(dAsinpi))               \
    ROW(HERE,  d, Atanpi,     ONE,        EACH,  MEASURED(dAtanpi))               \
    ROW(HERE,  d, Exp2,       ONE,        ALL,   MEASURED(dExp2))                 \
    ROW(HERE,  d, Exp10,      ONE,        ALL,   MEASURED(dExp10))                \
    ROW(HERE,  d, Log2,       ONE,        EACH,  MEASURED(dLog2))                 \
    ROW(HERE,  d, Sind,       ONE,        EACH,  MEASURED(dSind))                 \
    ROW(HERE,  d, Cosd,       ONE,        EACH,  MEASURED(dCosd))                 \
    ROW(HERE,  d, Tand,       ONE,        EACH,  MEASURED(dTand))                 \
    ROW(HERE,  d, Logb,       ONE,        ALL,   MEASURED(dLogb))                 \
    ROW(HERE,  c, Cos,        ONE,        ALL,   MEASURED(cCos))                  \
    ROW(HERE,  c, Sin,        ONE,        ALL,   MEASURED(cSin))                  \
    ROW(HERE,  c, Tan,        ONE,        ALL,   MEASURED(cTan))                  \
    ROW(HERE,  c, Cosh,       ONE,        ALL,   MEASURED(cCosh))                 \
    ROW(HERE,  c, Sinh,       ONE,        ALL,   MEASURED(cSinh))                 \
    ROW(HERE,  c, Tanh,       ONE,        ALL,   MEASURED(cTanh))                 \
    ROW(LATER, c, Acos,       ONE,        ALL,   MEASURED(cAcos))                 \
    ROW(LATER, c, Asin,       ONE,        ALL,   COST(1223.63, 1223.63, 1223.63)) \
    ROW(LATER, c, Atan,       ONE,        ALL,   MEASURED(cAtan))                 \
    ROW(LATER, c, Acosh,      ONE,        ALL,   MEASURED(cAcosh))                \
    ROW(LATER, c, Asinh,      ONE,        ALL,   MEASURED(cAsinh))                \
    ROW(LATER, c, Atanh,      ONE,        ALL,   MEASURED(cAtanh))                \
    ROW(HERE,  c, Exp,        ONE,        LA_EP, MEASURED(cExp))                  \
    ROW(HERE,  c, Ln,         ONE,        EACH,  MEASURED(cLn))                   \
    ROW(HERE,  c, Log10,      ONE,        ALL,   MEASURED(cLog10))                \
    ROW(HERE,  c, Sqrt,       ONE,        LA_EP, MEASURED(cSqrt))                 \
    ROW(HERE,  c, Conj,       ONE,        ALL,   MEASURED(cConj))                 \
    ROW(HERE,  z, Cos,        ONE,        ALL,   MEASURED(zCos))                  \
    ROW(HERE,  z, Sin,        ONE,        ALL,   MEASURED(zSin))                  \
    ROW(HERE,  z, Tan,        ONE,        ALL,   MEASURED(zTan))                  \
    ROW(HERE,  z, Cosh,       ONE,        ALL,   MEASURED(zCosh))                 \
    ROW(HERE,  z, Sinh,       ONE,        ALL,   MEASURED(zSinh))                 \
    ROW(HERE,  z, Tanh,       ONE,        ALL,   MEASURED(zTanh))                 \
    ROW(LATER, z, Acos,       ONE,        ALL,   MEASURED(zAcos))                 \
    ROW(LATER, z, Asin,       ONE,        ALL,   MEASURED(zAsin))                 \
    ROW(LATER, z, Atan,       ONE,        ALL,   MEASURED(zAtan))                 \
    ROW(LATER, z, Acosh,      ONE,        ALL,   MEASURED(zAcosh))                \
    ROW(LATER, z, Asinh,      ONE,        ALL,   MEASURED(zAsinh))                \
    ROW(LATER, z, Atanh,      ONE,        ALL,   MEASURED(zAtanh))                \
    ROW(HERE,  z, Exp,        ONE,        LA_EP, MEASURED(zExp))                  \
    ROW(HERE,  z, Ln,         ONE,        LA_HA, MEASURED(zLn))                   \
    ROW(HERE,  z, Log10,      ONE,        ALL,   MEASURED(zLog10))                \
    ROW(HERE,  z, Sqrt,       ONE,        ALL,   MEASURED(zSqrt))                 \
    ROW(HERE,  z, Conj,       ONE,        ALL,   MEASURED(zConj))                 \
    ROW(HERE,  c, CIS,        TO_COMPLEX, EACH,  MEASURED(cCIS))                  \
    ROW(HERE,  z, CIS,        TO_COMPLEX, EACH,  MEASURED(zCIS))                  \
    ROW(HERE,  c, Abs,        TO_REAL,    EACH,  MEASURED(cAbs))                  \
    ROW(HERE,  c, Arg,        TO_REAL,    EACH,  MEASURED(cArg))                  \
    ROW(HERE,  z, Abs,        TO_REAL,    EACH,  MEASURED(zAbs))                  \
    ROW(HERE,  z, Arg,        TO_REAL,    EACH,  MEASURED(zArg))                  \
    ROW(HERE,  s, Div,        TWO,        ALL,   MEASURED(sDiv))                  \
    ROW(HERE,  s, Pow,        TWO,        LA_HA, MEASURED(sPow))                  \
    ROW(HERE,  s, Atan2,      TWO,        EACH,  MEASURED(sAtan2))                \
    ROW(HERE,  s, Hypot,      TWO,        EACH,  MEASURED(sHypot))                \
    ROW(HERE,  s, Add,        TWO,        ALL,   COST(0.89, 0.89, 0.89))          \
    ROW(HERE,  s, Sub,        TWO,        ALL,   MEASURED(sSub))                  \
    ROW(HERE,  s, Mul,        TWO,        ALL,   MEASURED(sMul))                  \
    ROW(HERE,  s, Atan2pi,    TWO,        EACH,  MEASURED(sAtan2pi))              \
    ROW(HERE,  s, CopySign,   TWO,        ALL,   MEASURED(sCopySign))             \
    ROW(HERE,  s, NextAfter,  TWO,        ALL,   MEASURED(sNextAfter))            \
    ROW(HERE,  s, Fdim,       TWO,        ALL,   MEASURED(sFdim))                 \
    ROW(HERE,  s, Fmax,       TWO,        ALL,   MEASURED(sFmax))                 \
    ROW(HERE,  s, Fmin,       TWO,        ALL,   MEASURED(sFmin))                 \
    ROW(HERE,  s, MaxMag,     TWO,        ALL,   MEASURED(sMaxMag))               \
    ROW(HERE,  s, MinMag,     TWO,        ALL,   MEASURED(sMinMag))               \
    ROW(HERE,  s, Powr,       TWO,        LA_HA, MEASURED(sPowr))                 \
    ROW(HERE,  s, Remainder,  TWO,        ALL,   MEASURED(sRemainder))            \
    ROW(HERE,  s, Fmod,       TWO,        ALL,   MEASURED(sFmod))                 \
    ROW(HERE,  d, Div,        TWO,        ALL,   MEASURED(dDiv))                  \
    ROW(HERE,  d, Pow,        TWO,        LA_HA, COST(53.66, 53.66, 29.628))      \
    ROW(HERE,  d, Atan2,      TWO,        EACH,  MEASURED(dAtan2))                \
    ROW(HERE,  d, Hypot,      TWO,        EACH,  MEASURED(dHypot))                \
    ROW(HERE,  d, Add,        TWO,        ALL,   MEASURED(dAdd))                  \
    ROW(HERE,  d, Sub,        TWO,        ALL,   MEASURED(dSub))                  \
    ROW(HERE,  d, Mul,        TWO,        ALL,   MEASURED(dMul))                  \
    ROW(HERE,  d, Atan2pi,    TWO,        EACH,  MEASURED(dAtan2pi))              \
    ROW(HERE,  d, CopySign,   TWO,        ALL,   MEASURED(dCopySign))             \
    ROW(HERE,  d, NextAfter,  TWO,        ALL,   MEASURED(dNextAfter))            \
    ROW(HERE,  d, Fdim,       TWO,        ALL,   MEASURED(dFdim))                 \
    ROW(HERE,  d, Fmax,       TWO,        ALL,   MEASURED(dFmax))                 \
    ROW(HERE,  d, Fmin,       TWO,        ALL,   MEASURED(dFmin))                 \
    ROW(HERE,  d, MaxMag,     TWO,        ALL,   MEASURED(dMaxMag))               \
    ROW(HERE,  d, MinMag,     TWO,        ALL,   MEASURED(dMinMag))               \
    ROW(HERE,  d, Powr,       TWO,        EACH,  MEASURED(dPowr))                 \
    ROW(HERE,  d, Remainder,  TWO,        ALL,   MEASURED(dRemainder))            \
    ROW(HERE,  d, Fmod,       TWO,        ALL,   MEASURED(dFmod))                 \
    ROW(HERE,  c, Div,        TWO,        LA_HA, MEASURED(cDiv))                  \
    ROW(LATER, c, Pow,        TWO,        ALL,   MEASURED(cPow))                  \
    ROW(HERE,  c, Add,        TWO,        LA_HA, MEASURED(cAdd))                  \
    ROW(HERE,  c, Sub,        TWO,        LA_HA, MEASURED(cSub))                  \
    ROW(HERE,  c, Mul,        TWO,        LA_HA, MEASURED(cMul))                  \
    ROW(HERE,  c, MulByConj,  TWO,        LA_HA, MEASURED(cMulByConj))            \
    ROW(HERE,  z, Div,        TWO,        LA_HA, MEASURED(zDiv))                  \
    ROW(LATER, z, Pow,        TWO,        ALL,   COST(1023.85, 1023.85, 1023.85)) \
    ROW(HERE,  z, Add,        TWO,        LA_HA, MEASURED(zAdd))                  \
    ROW(HERE,  z, Sub,        TWO,        LA_HA, MEASURED(zSub))                  \
    ROW(HERE,  z, Mul,        TWO,        LA_HA, COST(80.339, 80.339, 16.969))    \
    ROW(HERE,  z, MulByConj,  TWO,        LA_HA, MEASURED(zMulByConj))            \
    ROW(LATER, c, Powx,       SCALAR,     ALL,   MEASURED(cPowx))                 \
    ROW(LATER, z, Powx,       SCALAR,     ALL,   MEASURED(zPowx))                 \
    ROW(HERE,  s, Powx,       SCALAR,     EACH,  MEASURED(sPowx))                 \
    ROW(HERE,  d, Powx,       SCALAR,     EACH,  MEASURED(dPowx))                 \
    ROW(HERE,  s, SinCos,     TWO_OUT,    LA_EP, MEASURED(sSinCos))               \
    ROW(HERE,  s, Modf,       TWO_OUT,    ALL,   MEASURED(sModf))                 \
    ROW(HERE,  d, SinCos,     TWO_OUT,    LA_HA, MEASURED(dSinCos))               \
    ROW(HERE,  d, Modf,       TWO_OUT,    ALL,   MEASURED(dModf))                 \
    ROW(HERE,  s, LinearFrac, LINEAR,     ALL,   MEASURED(sLinearFrac))           \
    ROW(HERE,  d, LinearFrac, LINEAR,     ALL,   MEASURED(dLinearFrac))

#define ORV_MOVE_ROWS(ROW) \
    ROW(HERE,  s, PackI,      PACK_STRIDE, ALL,   COST(1111, 1111, 1111))   \
    ROW(HERE,  d, PackI,      PACK_STRIDE, ALL,   COST(1111, 1111, 1111))   \
    ROW(HERE,  c, PackI,      PACK_STRIDE, ALL,   COST(1111, 1111, 1111))   \
    ROW(HERE,  z, PackI,      PACK_STRIDE, ALL,   COST(1111, 1111, 1111))   \
    ROW(HERE,  s, PackM,      PACK_LIST,  ALL,   COST(1111, 1111, 1111))   \
    ROW(HERE,  d, PackM,      PACK_LIST,  ALL,   COST(1111, 1111, 1111))   \
    ROW(HERE,  c, PackM,      PACK_LIST,  ALL,   COST(1111, 1111, 1111))   \
    ROW(HERE,  z, PackM,      PACK_LIST,  ALL,   COST(1111, 1111, 1111))   \
    ROW(HERE,  s, PackV,      PACK_LIST,  ALL,   COST(1111, 1111, 1111))   \
    ROW(HERE,  d, PackV,      PACK_LIST,  ALL,   COST(1111, 1111, 1111))   \
    ROW(HERE,  c, PackV,      PACK_LIST,  ALL,   COST(1111, 1111, 1111))   \
    ROW(HERE,  z, PackV,      PACK_LIST,  ALL,   COST(1111, 1111, 1111))   \
    ROW(HERE,  s, UnpackI,    UNPACK_STRIDE, ALL,   COST(1111, 1111, 1111)) \
    ROW(HERE,  d, UnpackI,    UNPACK_STRIDE, ALL,   COST(1111, 1111, 1111)) \
    ROW(HERE,  c, UnpackI,    UNPACK_STRIDE, ALL,   COST(1111, 1111, 1111)) \
    ROW(HERE,  z, UnpackI,    UNPACK_STRIDE, ALL,   COST(1111, 1111, 1111)) \
    ROW(HERE,  s, UnpackM,    UNPACK_LIST, ALL,   COST(1111, 1111, 1111))   \
    ROW(HERE,  d, UnpackM,    UNPACK_LIST, ALL,   COST(1111, 1111, 1111))   \
    ROW(HERE,  c, UnpackM,    UNPACK_LIST, ALL,   COST(1111, 1111, 1111))   \
    ROW(HERE,  z, UnpackM,    UNPACK_LIST, ALL,   COST(1111, 1111, 1111))   \
    ROW(HERE,  s, UnpackV,    UNPACK_LIST, ALL,   COST(1111, 1111, 1111))   \
    ROW(HERE,  d, UnpackV,    UNPACK_LIST, ALL,   COST(1111, 1111, 1111))   \
    ROW(HERE,  c, UnpackV,    UNPACK_LIST, ALL,   COST(1111, 1111, 1111))   \
    ROW(HERE,  z, UnpackV,    UNPACK_LIST, ALL,   COST(1111, 1111, 1111))
// clang-format on

#endif
