// The texts of the messages that the kernel library asks for by number.
#include "platform/export.h"

#include <orv/services.h>

#include <cstdarg>
#include <cstdio>

namespace {

struct Message {
    int32_t code;
    const char* format;
};

// 748 takes the name of the function and the argument's position, 749 to 754 the name, 755 to 766 the element's index
// and a value.
constexpr Message messages[] = {
    {748, "orv: %s: argument %d is not valid"},
    {749, "orv: %s: a pointer is not valid"},
    {750, "orv: %s: an argument is outside the domain"},
    {751, "orv: %s: an argument is at a singularity"},
    {752, "orv: %s: a result overflows"},
    {753, "orv: %s: a result underflows"},
    {754, "orv: %s: an element could not be computed"},
    {755, "orv:   element %d: argument %.17g"},
    {756, "orv:   element %d: result %.17g"},
    {757, "orv:   element %d: argument %.17g"},
    {758, "orv:   element %d: first result %.17g"},
    {759, "orv:   element %d: second result %.17g"},
    {760, "orv:   element %d: first argument %.17g"},
    {761, "orv:   element %d: second argument %.17g"},
    {762, "orv:   element %d: result %.17g"},
    {763, "orv:   element %d: first argument %.17g"},
    {764, "orv:   element %d: second argument %.17g"},
    {765, "orv:   element %d: first result %.17g"},
    {766, "orv:   element %d: second result %.17g"},
    {773, "orv: no memory or no thread slot for a thread's state"},
};

}  // namespace

ORV_API int32_t orv_serv_print(int32_t, int32_t code, int32_t count, ...) {
    for (const Message& message : messages) {
        if (message.code != code) continue;
        // One write per line, so that lines of several threads do not mix.
        char line[256];
        va_list arguments;
        va_start(arguments, count);
        std::vsnprintf(line, sizeof line, message.format, arguments);
        va_end(arguments);
        return std::fprintf(stderr, "%s\n", line);
    }
    return std::fprintf(stderr, "orv: message %d\n", code);
}
