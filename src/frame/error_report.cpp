// The reporters: one template, told apart by how an element is read and written.
#include "frame/error_report.h"

#include "frame/mode.h"

#include <string.h>

namespace orv::frame {
namespace {

// The error modes that have a default action, or ask for reporting at all.
constexpr uint32_t default_action_modes = 0x2F00;
constexpr size_t longest_name = 47;

void read_element(const float& x, double& re, double&) { re = x; }
void read_element(const double& x, double& re, double&) { re = x; }
void read_element(const orv_complex_s& x, double& re, double& im) { re = x.re, im = x.im; }
void read_element(const orv_complex_d& x, double& re, double& im) { re = x.re, im = x.im; }

void write_element(float& x, double re, double) { x = static_cast<float>(re); }
void write_element(double& x, double re, double) { x = re; }
void write_element(orv_complex_s& x, double re, double im) { x = {static_cast<float>(re), static_cast<float>(im)}; }
void write_element(orv_complex_d& x, double re, double im) { x = {re, im}; }

void copy_name(ArqErrorContext& context, const char* name) {
    const size_t length = strnlen(name, longest_name);
    memcpy(context.func_name, name, length);
    context.func_name[length] = '\0';
    context.func_name_len = static_cast<int32_t>(length);
}

template <class T>
constexpr bool is_complex = true;
template <>
constexpr bool is_complex<float> = false;
template <>
constexpr bool is_complex<double> = false;

}  // namespace

template <class In, class Out>
void report_error(int32_t status, int32_t index, const In* start, Operand<const In> a1, Operand<const In> a2,
                  Operand<Out> r1, Operand<Out> r2, const char* name) {
    ArqThreadBlock* block = thread_block();
    if (!block) return;
    const uint32_t mode = mode_of(block);
    if ((mode & mode_error) == mode_error_noerr) return;
    block->status = status;
    if ((mode & mode_error) == mode_error_ignore) return;

    ArqErrorContext context;
    context.code = status;
    context.index = index;
    if (block->interf_input_vector) {
        const intptr_t distance =
            reinterpret_cast<intptr_t>(start) - reinterpret_cast<intptr_t>(block->interf_input_vector);
        context.index += static_cast<int32_t>(distance / static_cast<intptr_t>(sizeof(In)));
    }
    copy_name(context, name);

    const bool whole_call = status == status_bad_argument || status == status_bad_pointer;
    if (!whole_call) {
        // A real side of a complex function has imaginary parts of zero; an all real function has none.
        if constexpr (is_complex<In> || is_complex<Out>)
            context.arg1_im = context.arg2_im = context.res1_im = context.res2_im = 0;
        read_element(a1.at(index), context.arg1, context.arg1_im);
        read_element(a2.at(index), context.arg2, context.arg2_im);
        read_element(r1.at(index), context.res1, context.res1_im);
        read_element(r2.at(index), context.res2, context.res2_im);
    }
    if ((mode & mode_error_callback) && block->callback && block->callback(&context) != 0) return;
    if (mode & default_action_modes) ReportDefaultActions(&context);
    if (whole_call) return;
    write_element(r2.at(index), context.res2, context.res2_im);
    write_element(r1.at(index), context.res1, context.res1_im);
}

#define ORV_DEFINE_REPORTERS(letter, Element)                                                                        \
    void ReportError##letter(int32_t status, int32_t index, const Element* a1, const Element* a2, Element* r1,       \
                             Element* r2, const char* name) {                                                        \
        report_error<Element, Element>(status, index, a1, {a1, 1}, {a2, 1}, {r1, 1}, {r2, 1}, name);                 \
    }                                                                                                                \
    void ReportError##letter##I(int32_t status, int32_t index, const Element* a1, int32_t inca1, const Element* a2,  \
                                int32_t inca2, Element* r1, int32_t incr1, Element* r2, int32_t incr2,               \
                                const char* name) {                                                                  \
        report_error<Element, Element>(status, index, a1, {a1, inca1}, {a2, inca2}, {r1, incr1}, {r2, incr2}, name); \
    }

ORV_DEFINE_REPORTERS(S, float)
ORV_DEFINE_REPORTERS(D, double)
ORV_DEFINE_REPORTERS(C, orv_complex_s)
ORV_DEFINE_REPORTERS(Z, orv_complex_d)

// From complex to real and back.
#define ORV_INSTANTIATE(In, Out)                                                                                \
    template void report_error(int32_t, int32_t, const In*, Operand<const In>, Operand<const In>, Operand<Out>, \
                               Operand<Out>, const char*);
ORV_INSTANTIATE(orv_complex_s, float)
ORV_INSTANTIATE(orv_complex_d, double)
ORV_INSTANTIATE(float, orv_complex_s)
ORV_INSTANTIATE(double, orv_complex_d)

}  // namespace orv::frame
