// The texts of the messages that the kernel library asks for by number.
#include "services/export.h"

#include <orv/services.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>

namespace {

struct Message {
    int32_t code;
    int32_t arguments;
    const char* format;
};

// 748 takes the name of the function and the argument's position, 749 to 754 the name, 755 to 766 the element's index
// and a value. Values print with 17 significant digits, from which a double can be read back exactly.
constexpr Message messages[] = {
    {748, 2, "orv: %s: argument %d is not valid"},
    {749, 1, "orv: %s: a pointer is not valid"},
    {750, 1, "orv: %s: an argument is outside the domain"},
    {751, 1, "orv: %s: an argument is at a singularity"},
    {752, 1, "orv: %s: a result overflows"},
    {753, 1, "orv: %s: a result underflows"},
    {754, 1, "orv: %s: an element could not be computed"},
    {755, 2, "orv:   element %d: argument %.17g"},
    {756, 2, "orv:   element %d: result %.17g"},
    {757, 2, "orv:   element %d: argument %.17g"},
    {758, 2, "orv:   element %d: first result %.17g"},
    {759, 2, "orv:   element %d: second result %.17g"},
    {760, 2, "orv:   element %d: first argument %.17g"},
    {761, 2, "orv:   element %d: second argument %.17g"},
    {762, 2, "orv:   element %d: result %.17g"},
    {763, 2, "orv:   element %d: first argument %.17g"},
    {764, 2, "orv:   element %d: second argument %.17g"},
    {765, 2, "orv:   element %d: first result %.17g"},
    {766, 2, "orv:   element %d: second result %.17g"},
    {773, 0, "orv: no memory or no thread slot for a thread's state"},
};

}  // namespace

ORV_API int32_t orv_serv_print(int32_t, int32_t code, int32_t count, ...) {
    char line[256];
    int length = -1;
    for (const Message& message : messages) {
        // A count that does not fit the text would read arguments that are not there.
        if (message.code != code || message.arguments != count) continue;
        va_list arguments;
        va_start(arguments, count);
        length = std::vsnprintf(line, sizeof line, message.format, arguments);
        va_end(arguments);
    }
    if (length < 0) length = std::snprintf(line, sizeof line, "orv: message %d", static_cast<int>(code));
    // A text that is too long is cut, and the line still ends.
    const size_t end = std::min(static_cast<size_t>(length), sizeof line - 2);
    line[end] = '\n';
    // One write per line, so that lines of several threads do not mix.
    return std::fwrite(line, 1, end + 1, stderr) == end + 1 ? static_cast<int32_t>(end + 1) : -1;
}
