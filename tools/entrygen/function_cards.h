// What the header says of each function: one card a function, the text in the words of a reference manual.
//
//   CARD(function, result, edges, accuracy, source)
//
// The worst errors come from bounds.inc; `accuracy` is what else there is to say of them, or nothing. A card speaks of real
// numbers, where there are such; what is different of complex ones stands in a second list:
//
//   CARD(function, edges, source)
#pragma once

// clang-format off
#define ORV_FUNCTION_CARDS(CARD) \
    CARD(Ceil, "the smallest integer not below a", "Infinities, NaNs and zeros come back; results between -1 and 0 are -0; inexact is signalled.", "", "IEC 60559 roundToIntegralTowardPositive") \
    CARD(Floor, "the largest integer not above a", "Infinities, NaNs and zeros come back; inexact is signalled.", "", "IEC 60559 roundToIntegralTowardNegative") \
    CARD(Trunc, "the integer part of a", "Infinities, NaNs and zeros come back, the sign is kept; inexact is signalled.", "", "IEC 60559 roundToIntegralTowardZero") \
    CARD(Rint, "a rounded to an integer by the caller's rounding mode", "Infinities, NaNs and zeros come back; inexact is signalled.", "", "C99 7.12.9.4") \
    CARD(NearbyInt, "a rounded to an integer by the caller's rounding mode", "Infinities, NaNs and zeros come back; inexact is not signalled.", "", "C99 7.12.9.3") \
    CARD(Round, "a rounded to the nearest integer, halves away from zero", "Infinities, NaNs and zeros come back, the sign is kept.", "", "C99 7.12.9.6") \
    CARD(Frac, "the part of a after the point, with the sign of a", "An infinity gives a zero of its sign, a NaN a quiet NaN.", "", "a - trunc(a)") \
    CARD(Abs, "the absolute value of a", "Infinities give plus infinity; a signalling NaN raises invalid and comes out quiet; denormals follow the caller's denormal settings.", "", "a * copysign(1, a)") \
    CARD(Sqr, "a * a", "As IEC 60559 multiplication.", "", "IEC 60559") \
    CARD(Add, "a + b", "As IEC 60559 addition.", "", "IEC 60559") \
    CARD(Sub, "a - b", "As IEC 60559 subtraction.", "", "IEC 60559") \
    CARD(Mul, "a * b", "As IEC 60559 multiplication.", "", "IEC 60559") \
    CARD(Inv, "1 / a", "Zeros give an infinity of their sign, reported as singularity; an overflow an infinity, reported as such; infinities give zeros.", "", "IEC 60559 division") \
    CARD(Sqrt, "the square root of a", "Negative values give a NaN, reported as domain; zeros and plus infinity come back.", "", "IEC 60559 squareRoot") \
    CARD(InvSqrt, "1 / sqrt(a)", "Zeros give an infinity of their sign, reported as singularity; negative values a NaN, reported as domain; plus infinity gives +0.", "", "IEC 60559 rSqrt") \
    CARD(Cbrt, "the cube root of a", "Zeros and infinities come back.", "", "W. J. Cody and W. Waite, Software Manual for the Elementary Functions, 1980, with a table in place of the rational approximation") \
    CARD(InvCbrt, "1 / cbrt(a)", "Zeros give an infinity of their sign, reported as singularity; infinities give zeros.", "", "W. J. Cody and W. Waite, Software Manual for the Elementary Functions, 1980, with a table in place of the rational approximation") \
    CARD(Div, "a / b", "A finite number other than zero over zero gives an infinity, reported as singularity; 0/0 and infinity/infinity a NaN, reported as domain; overflow and underflow are not reported.", "", "IEC 60559 division") \
    CARD(Hypot, "the square root of a * a + b * b", "An infinity gives plus infinity, also beside a NaN; an overflow gives infinity, reported as such. Nothing in between overflows.", "", "IEC 60559 hypot") \
    CARD(Remainder, "a - n b with n the integer nearest to a / b, ties to even", "b of zero or an infinite a give a NaN, reported as domain; an infinite b gives a; a zero has the sign of a. Denormals are numbers in every mode.", "", "IEC 60559 remainder") \
    CARD(Fmod, "a - n b with n the integer part of a / b", "b of zero or an infinite a give a NaN, reported as domain; an infinite b gives a; a zero has the sign of a. Denormals are numbers in every mode.", "", "C99 7.12.10.1") \
    CARD(Fdim, "a - b where a is larger, +0 elsewhere", "An overflow gives infinity, reported as such.", "", "C99 7.12.12.1") \
    CARD(Fmax, "the larger of a and b", "Of one NaN the other argument; -0 counts below +0.", "", "IEC 60559-2008 maxNum") \
    CARD(Fmin, "the smaller of a and b", "Of one NaN the other argument; -0 counts below +0.", "", "IEC 60559-2008 minNum") \
    CARD(MaxMag, "the argument of the larger magnitude", "Of equal magnitudes as Fmax; of one NaN the other argument.", "", "IEC 60559-2008 maxNumMag") \
    CARD(MinMag, "the argument of the smaller magnitude", "Of equal magnitudes as Fmin; of one NaN the other argument.", "", "IEC 60559-2008 minNumMag") \
    CARD(CopySign, "the magnitude of a with the sign of b", "Of every argument, NaNs too; no flag is raised. Denormals are numbers in every mode.", "", "IEC 60559 copySign") \
    CARD(NextAfter, "the number next to a in the direction of b", "b where they are equal; past the largest number an infinity, reported as overflow; a subnormal or zero is reported as underflow. Denormals are numbers in every mode.", "", "C99 7.12.11.3") \
    CARD(Modf, "the integral part of a, and z[i] the fraction", "Both have the sign of a; an infinity gives itself and a zero.", "", "C99 7.12.6.12") \
    CARD(LinearFrac, "(scalea * a + shifta) / (scaleb * b + shiftb)", "Each operation is rounded once. A denominator of zero as in Div; a NaN that no argument brings is reported as domain; scaleb of 0 with shiftb of 1 takes no division.", "Of the operations one by one.", "IEC 60559") \
    CARD(Exp, "e to the power a", "Above 709.78 (s: 88.72) infinity, reported as overflow; below -708.40 (s: -87.34) a subnormal or zero, reported as underflow; minus infinity gives +0.", "", "P. T. P. Tang, Table-driven implementation of the exponential function, ACM TOMS 15 (1989)") \
    CARD(Ln, "the natural logarithm of a", "Zero gives minus infinity, reported as singularity; negative values a NaN, reported as domain; plus infinity comes back.", "", "P. T. P. Tang, Table-driven implementation of the logarithm function, ACM TOMS 16 (1990)") \
    CARD(Sin, "the sine of a", "An infinity gives a NaN and status 1, a NaN a quiet NaN; zeros come back.", "", "Payne and Hanek, Radian Reduction for Trigonometric Functions, 1983") \
    CARD(Cos, "the cosine of a", "An infinity gives a NaN and status 1, a NaN a quiet NaN.", "", "Payne and Hanek, Radian Reduction for Trigonometric Functions, 1983") \
    CARD(Tan, "the tangent of a", "An infinity gives a NaN and status 1, a NaN a quiet NaN; zeros come back.", "", "Payne and Hanek, Radian Reduction for Trigonometric Functions, 1983") \
    CARD(SinCos, "the sine of a, and z[i] its cosine", "An infinity gives NaNs and status 1, a NaN quiet NaNs.", "", "Payne and Hanek, Radian Reduction for Trigonometric Functions, 1983") \
    CARD(Sinpi, "the sine of pi a", "An infinity gives a NaN and status 1, a NaN a quiet NaN; whole numbers give a zero of their sign.", "", "IEC 60559 sinPi") \
    CARD(Cospi, "the cosine of pi a", "An infinity gives a NaN and status 1, a NaN a quiet NaN; odd multiples of 1/2 give +0.", "", "IEC 60559 cosPi") \
    CARD(Tanpi, "the tangent of pi a", "An infinity gives a NaN and status 1, a NaN a quiet NaN; odd multiples of 1/2 are poles, status 2, with infinities of alternating sign.", "", "IEC 60559 tanPi") \
    CARD(Sind, "the sine of a degrees", "An infinity gives a NaN and status 1, a NaN a quiet NaN; multiples of 180 give a zero of their sign.", "", "Exact reduction modulo 360") \
    CARD(Cosd, "the cosine of a degrees", "An infinity gives a NaN and status 1, a NaN a quiet NaN; odd multiples of 90 give +0.", "", "Exact reduction modulo 360") \
    CARD(Tand, "the tangent of a degrees", "An infinity gives a NaN and status 1, a NaN a quiet NaN; odd multiples of 90 are poles, status 2, with infinities of alternating sign.", "", "Exact reduction modulo 360") \
    CARD(Expm1, "e to the power a, less 1", "Above 709.78 (s: 88.72) infinity, reported as overflow; minus infinity gives -1; zeros come back.", "Keeps its relative accuracy next to zero.", "P. T. P. Tang, Table-driven implementation of the expm1 function, ACM TOMS 18 (1992)") \
    CARD(Exp2, "2 to the power a", "From 1024 (s: 128) on infinity, reported as overflow; below -1022 (s: -126) a subnormal or zero, reported as underflow; minus infinity gives +0.", "", "P. T. P. Tang, ACM TOMS 15 (1989)") \
    CARD(Exp10, "10 to the power a", "Above 308.25 (s: 38.53) infinity, reported as overflow; below -307.65 (s: -37.93) a subnormal or zero, reported as underflow; minus infinity gives +0.", "", "P. T. P. Tang, ACM TOMS 15 (1989)") \
    CARD(Log10, "the logarithm of a to base 10", "Zero gives minus infinity, reported as singularity; negative values a NaN, reported as domain; plus infinity comes back.", "", "P. T. P. Tang, ACM TOMS 16 (1990)") \
    CARD(Log2, "the logarithm of a to base 2", "Zero gives minus infinity, reported as singularity; negative values a NaN, reported as domain; plus infinity comes back; exact for powers of two.", "", "P. T. P. Tang, ACM TOMS 16 (1990)") \
    CARD(Log1p, "the natural logarithm of 1 + a", "-1 gives minus infinity, reported as singularity; values below -1 a NaN, reported as domain; plus infinity and zeros come back.", "Keeps its relative accuracy next to zero.", "P. T. P. Tang, ACM TOMS 16 (1990)") \
    CARD(Logb, "the exponent of a: the integer k with 2^k <= |a| < 2^(k+1)", "Zero gives minus infinity, reported as singularity; infinities give plus infinity.", "", "IEC 60559 logB") \
    CARD(Pow, "a to the power b", "b = 0 and a = 1 give 1, and so does -1 to an infinite power; a NaN elsewhere a quiet NaN. A zero to a negative power is infinity, minus infinity for -0 to an odd whole one, reported as domain; a negative finite a to a power that is no whole number is a NaN, reported as domain, and -infinity to such a power a NaN without report. EP reports overflow; LA and HA report neither overflow nor underflow.", "", "P. T. P. Tang, Table-driven implementation of the logarithm function, ACM TOMS 16 (1990), carried to two parts") \
    CARD(Powr, "a to the power b as exp(b ln a)", "A negative a is a NaN, reported as domain, and so are 0 and infinity to the power 0 and 1 to an infinite power; a zero to a negative power is infinity, reported as domain; a NaN beside them a quiet NaN. EP reports overflow; LA and HA report neither overflow nor underflow.", "", "IEC 60559 powr") \
    CARD(Powx, "a to the power b, b being one number for all elements", "As Pow.", "", "As Pow") \
    CARD(Pow2o3, "the square of the cube root of a", "Zeros give +0, infinities infinity; a may be negative.", "", "A table of accurate values, after S. Gal, ACM TOMS 17 (1991)") \
    CARD(Pow3o2, "the cube of the square root of a", "A negative a is a NaN, reported as domain; -0 gives +0. Beyond 2^682.67 (s: 2^85.33) infinity, reported as overflow; below 2^-681.33 (s: 2^-84) a subnormal or zero, reported as underflow.", "", "The root corrected by its residue") \
    CARD(PackI, "a[i * inca]", "A negative stride goes down from a. The arrays do not overlap; bits are moved, and no flag is raised.", "", "A strided copy") \
    CARD(PackM, "the i-th of the elements of a whose mask in list is not zero", "As many elements are written as there are such masks. The arrays do not overlap; bits are moved, and no flag is raised.", "", "A compressing copy") \
    CARD(PackV, "a[list[i]]", "The arrays do not overlap; bits are moved, and no flag is raised.", "", "A gathering copy") \
    CARD(UnpackI, "a[i / incy] for the multiples of incy", "y[i * incy] = a[i], and nothing else of y is touched; a negative stride goes down from y. The arrays do not overlap; bits are moved, and no flag is raised.", "", "A strided copy") \
    CARD(UnpackM, "the next element of a where the mask in list is not zero", "Other elements of y are not touched, and of a as many are read as there are such masks. The arrays do not overlap; bits are moved, and no flag is raised.", "", "An expanding copy") \
    CARD(UnpackV, "a[j] for the j with list[j] = i", "y[list[j]] = a[j], and nothing else of y is touched. The arrays do not overlap; bits are moved, and no flag is raised.", "", "A scattering copy") \
    CARD(Acos, "the arc cosine of a, in radians", "Beyond 1 in magnitude a NaN, reported as domain; 1 gives +0.", "LA gives up the last bit for speed.", "Half-angle reduction, after W. J. Cody and W. Waite, Software Manual for the Elementary Functions, 1980") \
    CARD(Acospi, "the arc cosine of a in multiples of pi", "Beyond 1 in magnitude a NaN, reported as domain; 1 gives +0, -1 gives 1.", "LA gives up the last bit for speed.", "IEC 60559 acosPi") \
    CARD(Asin, "the arc sine of a, in radians", "Beyond 1 in magnitude a NaN, reported as domain; zeros come back.", "LA gives up the last bit for speed.", "Half-angle reduction, after W. J. Cody and W. Waite, Software Manual for the Elementary Functions, 1980") \
    CARD(Asinpi, "the arc sine of a in multiples of pi", "Beyond 1 in magnitude a NaN, reported as domain; zeros come back; subnormal results are rounded once and not reported.", "LA gives up the last bit for speed.", "IEC 60559 asinPi") \
    CARD(Atan, "the arc tangent of a, in radians", "Infinities give pi/2 with their sign, zeros come back.", "In s LA gives up the last bit for speed.", "P. T. P. Tang, Table-lookup algorithms for elementary functions, ARITH 10 (1991)") \
    CARD(Atanpi, "the arc tangent of a in multiples of pi", "Infinities give 1/2 with their sign, zeros come back; subnormal results are rounded once and not reported.", "LA gives up the last bit for speed.", "IEC 60559 atanPi") \
    CARD(Atan2, "the angle of the point (b, a), in radians, from -pi to pi", "Zeros and infinities as C99 has them; a quotient below the normal range is rounded once and not reported.", "LA gives up the last bit for speed.", "P. T. P. Tang, Table-lookup algorithms for elementary functions, ARITH 10 (1991)") \
    CARD(Atan2pi, "the angle of the point (b, a) in multiples of pi, from -1 to 1", "Zeros and infinities as C99 has them for the angle in radians, exact fractions here; subnormal results are rounded once and not reported.", "LA gives up the last bit for speed.", "IEC 60559 atan2Pi") \
    CARD(Cosh, "the hyperbolic cosine of a", "Above 710.47 (s: 89.41) in magnitude infinity, reported as overflow; infinities give infinity.", "In s LA gives up the last bit for speed.", "P. T. P. Tang, Table-driven implementation of the expm1 function, ACM TOMS 18 (1992)") \
    CARD(Sinh, "the hyperbolic sine of a", "Above 710.47 (s: 89.41) in magnitude an infinity, reported as overflow; infinities and zeros come back.", "In s LA gives up the last bit for speed.", "P. T. P. Tang, Table-driven implementation of the expm1 function, ACM TOMS 18 (1992)") \
    CARD(Tanh, "the hyperbolic tangent of a", "Infinities give 1 with their sign, zeros come back.", "In s LA gives up the last bit for speed.", "P. T. P. Tang, Table-lookup algorithms for elementary functions, ARITH 10 (1991)") \
    CARD(Acosh, "the inverse hyperbolic cosine of a", "Below 1 a NaN, reported as domain; 1 gives +0, plus infinity comes back.", "", "ln(a + sqrt(a^2 - 1)) in two parts") \
    CARD(Asinh, "the inverse hyperbolic sine of a", "Infinities and zeros come back.", "", "ln(a + sqrt(a^2 + 1)) in two parts") \
    CARD(Atanh, "the inverse hyperbolic tangent of a", "Beyond 1 in magnitude a NaN, reported as domain; 1 and -1 give infinities, reported as singularity; zeros come back.", "", "P. T. P. Tang, Table-lookup algorithms for elementary functions, ARITH 10 (1991)") \
    CARD(Erf, "the error function", "Infinities give 1 of their sign; zeros come back.", "Keeps its relative accuracy next to zero; from 5.93 on 1.", "A table of erf and its derivative, with Taylor's series between") \
    CARD(Erfc, "the complementary error function: 1 - erf(a)", "Infinity gives +0, minus infinity 2. Above 26.54 (s: 9.19) a subnormal or zero, reported as underflow.", "Keeps its relative accuracy far out.", "e^(-a^2) times an expansion of e^(a^2) erfc(a)") \
    CARD(CdfNorm, "the cumulative normal distribution function", "Infinity gives 1, minus infinity +0. Below -37.52 (s: -12.98) a subnormal or zero, reported as underflow.", "Keeps its relative accuracy in the lower tail.", "As Erfc") \
    CARD(ExpInt1, "the exponential integral E1: that of e^-t / t from a to infinity", "Zeros give infinity, reported as singularity; negative values a NaN, reported as domain; infinity gives +0. Above 701.8 (s: 82.9) a subnormal or zero, reported as underflow, but not by the double EP.", "", "e^-a times an expansion of e^a E1(a); below 1/16 its series") \
    CARD(TGamma, "the gamma function", "Zeros give an infinity of their sign, reported as singularity; negative whole numbers and minus infinity a NaN, reported as domain. From 171.63 on (s: 35.04) and next to zero infinity, reported as overflow; subnormal results and zeros, which all are below -185 (s: -43), as underflow.", "", "Expansions about the middles of short intervals; below 0 by reflection") \
    CARD(LGamma, "ln of the magnitude of the gamma function", "Zero and negative whole numbers give infinity, reported as singularity; so do infinities, without report. Above 2.55e305 (s: 4.08e36) infinity, reported as overflow.", "Keeps its relative accuracy next to its zeros at 1 and 2 and, down to -17, next to those below -2.", "Expansions about the middles of short intervals and about the zeros; beyond 128 Stirling's series, below 0 by reflection") \
    CARD(ErfInv, "the inverse of the error function: the x with erf(x) = a", "-1 and 1 give an infinity of their sign, reported as singularity; values beyond them a NaN, reported as domain; zeros come back.", "Keeps its relative accuracy next to zero.", "Expansions about the middles of short intervals") \
    CARD(ErfcInv, "the inverse of the complementary error function: the x with erfc(x) = a", "0 gives infinity and 2 minus infinity, reported as singularity; values below 0 or above 2 a NaN, reported as domain.", "Keeps its relative accuracy next to a = 1.", "As ErfInv") \
    CARD(CdfNormInv, "the inverse of the cumulative normal distribution: the quantile of a", "0 gives minus infinity and 1 infinity, reported as singularity; values below 0 or above 1 a NaN, reported as domain.", "Keeps its relative accuracy next to a = 1/2.", "As ErfInv") \
    CARD(Conj, "the complex conjugate of a", "The sign bit of the imaginary part is turned whatever it is the sign of; no flag is raised.", "", "C99 7.3.9.4") \
    CARD(MulByConj, "a times the complex conjugate of b", "As Mul.", "", "C99 Annex G.5.1") \
    CARD(CIS, "cos a + i sin a", "An infinity gives NaNs and status 1, a NaN quiet NaNs.", "", "As SinCos") \
    CARD(Arg, "the angle of the complex number a, in radians, from -pi to pi", "Zeros and infinities as C99 has them for atan2; continuous from the side of a signed zero.", "", "As Atan2")

#define ORV_COMPLEX_CARDS(CARD) \
    CARD(Add, "Each part by itself; EP cannot differ.", "IEC 60559") \
    CARD(Sub, "Each part by itself; EP cannot differ.", "IEC 60559") \
    CARD(Mul, "An infinity times anything but zero is an infinity, beside a NaN too. Nothing is reported.", "Products in two parts, T. J. Dekker, Numer. Math. 18 (1971); C99 Annex G.5.1") \
    CARD(Div, "A finite number other than zero over zero gives infinities, reported as singularity; 0/0 and infinity/infinity NaNs, reported as domain; an infinity over a finite number is an infinity, a finite number over an infinity zero. Overflow and underflow are not reported.", "Products in two parts, T. J. Dekker, Numer. Math. 18 (1971); C99 Annex G.5.1") \
    CARD(Acos, "Of every number; the cuts lie on the real axis beyond -1 and 1, continued from the side of the zero's sign; nothing is reported.", "T. E. Hull, T. F. Fairgrieve and P. T. P. Tang, ACM TOMS 23 (1997), with exact squares") \
    CARD(Asin, "As Acos.", "T. E. Hull, T. F. Fairgrieve and P. T. P. Tang, ACM TOMS 23 (1997), with exact squares") \
    CARD(Acosh, "The cut lies on the real axis below 1, continued from the side of the zero's sign; nothing is reported.", "T. E. Hull, T. F. Fairgrieve and P. T. P. Tang, ACM TOMS 23 (1997), with exact squares") \
    CARD(Asinh, "The cuts lie on the imaginary axis beyond -i and i, continued from the side of the zero's sign; nothing is reported.", "T. E. Hull, T. F. Fairgrieve and P. T. P. Tang, ACM TOMS 23 (1997), with exact squares") \
    CARD(Atan, "i and -i are poles, reported as singularity; the cuts lie on the imaginary axis beyond them.", "C99 Annex G.6") \
    CARD(Atanh, "1 and -1 are poles, reported as singularity; the cuts lie on the real axis beyond them.", "C99 Annex G.6") \
    CARD(Pow, "exp(b ln a), the logarithm cut below the real axis; any a to the power 0 is 1, 0 to a power of positive real part 0, to a negative real power infinity, to others a NaN, the last two reported as domain; overflow is reported. The error holds where b ln a is below 100 in magnitude and grows with it beyond.", "The logarithm and the angle in two parts") \
    CARD(Abs, "As Hypot: an infinity gives plus infinity, beside a NaN too; an overflow infinity, reported as such.", "C99 Annex G.6") \
    CARD(Sqrt, "The root in the right half plane, continuous from the side of a signed zero; an infinite imaginary part makes both parts infinite, beside a NaN too. Nothing is reported.", "C99 Annex G.6.4.2") \
    CARD(Exp, "An infinite imaginary part gives NaNs, reported as domain, but zeros beside minus infinity; parts that overflow are infinities, reported as such; underflow is not reported.", "C99 Annex G.6.3.1") \
    CARD(Ln, "The cut is the negative real axis, continuous from the side of a signed zero. Zero gives minus infinity, reported as singularity; an infinite part makes the real part plus infinity.", "C99 Annex G.6.3.2") \
    CARD(Log10, "As Ln, both parts over ln 10.", "C99 Annex G.6.3.2") \
    CARD(Sin, "An infinite real part gives NaNs, reported as domain; parts that overflow are infinities, reported as such; underflow is not reported.", "C99 Annex G.6.2") \
    CARD(Cos, "As Sin.", "C99 Annex G.6.2") \
    CARD(Tan, "An infinite real part beside a finite imaginary one gives NaNs, reported as domain; an infinite imaginary part gives i or -i.", "C99 Annex G.6.2.6") \
    CARD(Sinh, "An infinite imaginary part gives NaNs, reported as domain; parts that overflow are infinities, reported as such; underflow is not reported.", "C99 Annex G.6.2.5") \
    CARD(Cosh, "As Sinh.", "C99 Annex G.6.2.4") \
    CARD(Tanh, "An infinite imaginary part beside a finite real one gives NaNs, reported as domain; an infinite real part gives 1 or -1.", "C99 Annex G.6.2.6")
// clang-format on
