// The eight reporters: one template, told apart by how an element is read and written.
#include "frame/error_report.h"

#include "frame/mode.h"

#include <stddef.h>
#include <string.h>

namespace orv::frame {
namespace {

// The error modes that have a default action, or ask for reporting at all.
constexpr uint32_t default_action_modes = 0x2F00;
constexpr size_t longest_name = 47;

// One array of a report, with the increment that leads from element to element.
template <class Element>
struct Operand {
    Element* start;
    int32_t increment;
    Element& at(int32_t index) const { return start[static_cast<ptrdiff_t>(index) * increment]; }
};

template <class Element>
struct Operands {
    Operand<const Element> a1, a2;
    Operand<Element> r1, r2;
};

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

template <class Element>
void report(int32_t status, int32_t index, const Operands<Element>& operands, const char* name) {
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
            reinterpret_cast<intptr_t>(operands.a1.start) - reinterpret_cast<intptr_t>(block->interf_input_vector);
        context.index += static_cast<int32_t>(distance / static_cast<intptr_t>(sizeof(Element)));
    }
    copy_name(context, name);

    const bool whole_call = status == status_bad_argument || status == status_bad_pointer;
    if (!whole_call) {
        read_element(operands.a1.at(index), context.arg1, context.arg1_im);
        read_element(operands.a2.at(index), context.arg2, context.arg2_im);
        read_element(operands.r1.at(index), context.res1, context.res1_im);
        read_element(operands.r2.at(index), context.res2, context.res2_im);
    }
    if ((mode & mode_error_callback) && block->callback && block->callback(&context) != 0) return;
    if (mode & default_action_modes) ReportDefaultActions(&context);
    if (whole_call) return;
    write_element(operands.r2.at(index), context.res2, context.res2_im);
    write_element(operands.r1.at(index), context.res1, context.res1_im);
}

}  // namespace

#define ORV_DEFINE_REPORTERS(letter, Element)                                                                       \
    void ReportError##letter(int32_t status, int32_t index, const Element* a1, const Element* a2, Element* r1,      \
                             Element* r2, const char* name) {                                                       \
        report<Element>(status, index, {{a1, 1}, {a2, 1}, {r1, 1}, {r2, 1}}, name);                                 \
    }                                                                                                               \
    void ReportError##letter##I(int32_t status, int32_t index, const Element* a1, int32_t inca1, const Element* a2, \
                                int32_t inca2, Element* r1, int32_t incr1, Element* r2, int32_t incr2,              \
                                const char* name) {                                                                 \
        report<Element>(status, index, {{a1, inca1}, {a2, inca2}, {r1, incr1}, {r2, incr2}}, name);                 \
    }

ORV_DEFINE_REPORTERS(S, float)
ORV_DEFINE_REPORTERS(D, double)
ORV_DEFINE_REPORTERS(C, orv_complex_s)
ORV_DEFINE_REPORTERS(Z, orv_complex_d)

}  // namespace orv::frame
