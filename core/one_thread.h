// The system's BLAS kept to one thread: its own threads beside those of a parallel region would be twice as many as there are
// processors.
#pragma once

#ifdef ORV_OPENBLAS
extern "C" void openblas_set_num_threads(int);
#endif

namespace orv::core {

inline void keep_to_one_thread() {
#ifdef ORV_OPENBLAS
    static const bool done = (openblas_set_num_threads(1), true);
    (void)done;
#endif
}

}  // namespace orv::core
