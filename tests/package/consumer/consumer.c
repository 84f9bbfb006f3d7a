/* The smallest user of both libraries, in C99. Ends with 0 if the kernel and the services answer. */
#include <orv/services.h>
#include <orv/vecmath.h>

int main(void) {
    const double a[3] = {-1.5, 0.25, 2.75};
    double y[3];
    _arqdFloor(3, a, y);
    if (y[0] != -2 || y[1] != 0 || y[2] != 2) return 1;

    orv_arq_kernel_SetMode(ORV_MODE_EP);
    if (orv_arq_kernel_dFloor_ttab[orv_arq_kernel_GetTTableIndex()] == 0) return 2;

    void* block = orv_serv_allocate(100, 128);
    if (!block || (size_t)block % 128 != 0) return 3;
    orv_serv_deallocate(block);
    return dll_cpu_version() == 6 ? 0 : 4;
}
