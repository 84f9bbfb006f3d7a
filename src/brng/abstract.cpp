// Abstract streams hand out numbers of their ring's type only. Every kernel for another type is the one function below
// under a name of its own; it looks at none of its arguments.
#include <orv/random.h>

#ifdef _WIN32
#define ORV_SYMBOL(name) "_" name
#define ORV_EXPORT(name) ".section .drectve\n.ascii \" -export:" name "\"\n.text\n"
#else
#define ORV_SYMBOL(name) name
#define ORV_EXPORT(name) ".type " name ", @function\n"
#endif

#define ORV_WRONG_KERNEL(name)                     \
    __asm__(ORV_EXPORT(name) ".globl " ORV_SYMBOL( \
        name) "\n"                                 \
              ".set " ORV_SYMBOL(name) ", " ORV_SYMBOL("orv_wrong_kernel"))

extern "C" __attribute__((used)) int32_t orv_wrong_kernel() { return AbstractStatusWrongKernel; }

ORV_WRONG_KERNEL("__kuzdBRngiAbstract");
ORV_WRONG_KERNEL("__kuzsBRngiAbstract");
ORV_WRONG_KERNEL("__kuziBRngdAbstract");
ORV_WRONG_KERNEL("__kuzsBRngdAbstract");
ORV_WRONG_KERNEL("__kuziBRngsAbstract");
ORV_WRONG_KERNEL("__kuzdBRngsAbstract");
