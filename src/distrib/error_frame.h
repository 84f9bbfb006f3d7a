// The state in which distributions run their kernels: a logarithm of zero is reported to the distribution's own callback
// and to nobody else, and the calling thread finds its state as it left it.
#pragma once

#include "frame/fp_frame.h"

#include <orv/vecmath.h>

namespace orv::distrib {

// The calling thread's mode word and callback, given back as they were: a mode with an empty field cannot be had back by
// setting it.
struct ThreadState {
    frame::ArqThreadBlock* block = frame::thread_block();
    uint32_t mode = block ? frame::mode_of(block) : 0;
    orv_arq_callback callback = block ? block->callback : nullptr;

    // As SetMode does, without looking for the thread's block again.
    void set_mode(uint32_t field, uint32_t value) const {
        if (block) block->mode = (block->mode & ~field) | value;
    }
    void set_callback(orv_arq_callback other) const {
        if (block) block->callback = other;
    }
    void restore() const {
        if (!block) return;
        block->callback = callback;
        block->mode = mode;
    }
};

// Clears what is pending in the x87 unit; the clearing itself takes far longer than the look.
inline void clear_pending_x87() {
    if (frame::read_x87_status() & 0x80FF) frame::clear_x87_exceptions();
}

// Exceptions masked in both units, errors to `callback` alone, until the end of the scope.
class ErrorFrame {
public:
    explicit ErrorFrame(orv_arq_callback callback) {
        clear_pending_x87();
        x87 = frame::read_x87_control();
        if (x87_changed()) frame::write_x87_control(static_cast<uint16_t>(x87 | frame::X87Guard::masks));
        mxcsr = frame::read_mxcsr();
        if (mxcsr_changed()) frame::write_mxcsr(mxcsr | frame::mxcsr_masks);
        thread.set_mode(frame::mode_error, frame::mode_error_callback);
        thread.set_callback(callback);
    }
    ~ErrorFrame() {
        thread.restore();
        clear_pending_x87();
        if (x87_changed()) frame::write_x87_control(x87);
        if (mxcsr_changed()) frame::write_mxcsr(mxcsr);
    }
    ErrorFrame(const ErrorFrame&) = delete;
    ErrorFrame& operator=(const ErrorFrame&) = delete;

private:
    ThreadState thread;
    uint16_t x87;
    uint32_t mxcsr;

    bool x87_changed() const { return (x87 & frame::X87Guard::masks) != frame::X87Guard::masks; }
    bool mxcsr_changed() const { return (mxcsr & frame::mxcsr_masks) != frame::mxcsr_masks; }
};

// The logarithm of the least positive number, 2^-1074 or 2^-149. A uniform of zero counts as that number.
template <class T>
inline constexpr double least_logarithm = -744.4400719213812;
template <>
inline constexpr double least_logarithm<float> = -103.2789306640625;

inline void set_results(ArqErrorContext* error, double value) { error->res1 = error->res2 = value; }

template <class T>
int32_t take_least_logarithm(ArqErrorContext* error) {
    set_results(error, least_logarithm<T>);
    return 0;
}

// For distributions with a kernel behind the logarithm, whose own reports are left alone.
template <class T>
int32_t take_least_logarithm_at_pole(ArqErrorContext* error) {
    if (error->code == ORV_STATUS_SINGULARITY) set_results(error, least_logarithm<T>);
    return 0;
}

}  // namespace orv::distrib
