// The mode word: first value from the environment, reading, merging, and the table index that follows from it.
#include "frame/mode.h"

#include "platform/export.h"
#include "services/services.h"

#include <string.h>

namespace orv::frame {
namespace {

constexpr int32_t override_size = 256;

struct Keyword {
    const char* text;
    int32_t length;
    uint64_t bits;
};

constexpr Keyword keywords[] = {
    {"LA", 2, 0x1},
    {"HA", 2, 0x2},
    {"EP", 2, 0x3},
    {"DEFAULT_PRECISION", 17, 0x0},
    {"FLOAT_CONSISTENT", 16, 0x10},
    {"DOUBLE_CONSISTEN", 16, 0x20},  // without the last letter: the interface has it so
    {"RESTORE", 7, 0x30},
    {"ERRMODE_IGNORE", 14, 0x100},
    {"ERRMODE_ERRNO", 13, 0x200},
    {"ERRMODE_STDERR", 14, 0x400},
    {"ERRMODE_EXCEPT", 14, 0x800},
    {"ERRMODE_CALLBACK", 16, 0x1000},
    {"ERRMODE_NOERR", 13, 0x2000},
    {"ERRMODE_DEFAULT", 15, 0x1A00},
    {"TRAP_INVALID", 12, 0x1000000},
    {"TRAP_DIVBYZERO", 14, 0x2000000},
    {"TRAP_OVERFLOW", 13, 0x4000000},
    {"TRAP_UNDERFLOW", 14, 0x8000000},
};

const Keyword* find_keyword(const char* buffer, int32_t start) {
    for (const Keyword& keyword : keywords) {
        if (start + keyword.length >= override_size) continue;
        if (strncmp(buffer + start, keyword.text, static_cast<size_t>(keyword.length)) == 0) return &keyword;
    }
    return nullptr;
}

// The variable's name is kept from a casual look at the file: byte i is combined with ((2 i) mod 5) + 1.
struct VariableName {
    char bytes[13];
};

constexpr VariableName scrambled(const VariableName& name) {
    VariableName result = name;
    for (int i = 0; i < 12; ++i) result.bytes[i] = static_cast<char>(name.bytes[i] ^ (2 * i % 5 + 1));
    return result;
}

// Volatile, so that the compiler does not unscramble it beforehand.
constexpr VariableName stored = scrambled({"ORV_ARQ_MODE"});
const volatile VariableName variable = stored;

orv_serv_lock_word environment_lock = 0;

uint64_t read_override() {
    VariableName name;
    for (int i = 0; i < 13; ++i) name.bytes[i] = variable.bytes[i];
    name = scrambled(name);

    // One byte more than the service is told of: whatever it writes, the text ends.
    char buffer[override_size + 1] = {};
    orv_serv_lock(&environment_lock);
    const int32_t length = orv_serv_getenv(name.bytes, buffer, override_size);
    orv_serv_unlock(&environment_lock);
    return length > 0 ? parse_override(buffer) : no_override;
}

}  // namespace

uint64_t parse_override(const char* buffer) {
    constexpr char prefix[] = "ARQ_";
    constexpr int32_t prefix_length = 4;
    uint64_t bits = 0;
    for (int32_t position = 0;;) {
        if (strncmp(buffer + position, prefix, prefix_length) != 0) return no_override;
        position += prefix_length;
        const Keyword* keyword = find_keyword(buffer, position);
        if (!keyword) return no_override;
        bits |= keyword->bits;
        position += keyword->length;
        if (buffer[position] == '\0') return bits;
        if (buffer[position] != ',') return no_override;
        ++position;
    }
}

uint32_t initialise_mode(ArqThreadBlock* block) {
    const uint64_t override_bits = read_override();
    uint32_t mode = mode_default;
    if (override_bits != no_override) {
        mode = static_cast<uint32_t>(override_bits);
        if ((mode & mode_accuracy) == 0) mode |= mode_accuracy_ha;
        if ((mode & mode_error) == 0) mode |= mode_error_default;
    }
    if (block) block->mode = mode;
    return mode;
}

namespace {

uint32_t get_mode() {
    ArqThreadBlock* block = thread_block();
    return block ? mode_of(block) : mode_default;
}

// A field of zero keeps what is there, so no field is ever cleared; the consistency field is not among them.
uint32_t merge_mode(uint32_t mode) {
    ArqThreadBlock* block = thread_block();
    if (!block) return mode_default;
    const uint32_t old = mode_of(block);
    uint32_t merged = old;
    constexpr uint32_t fields[] = {mode_accuracy, mode_error, mode_denormal, mode_trap};
    for (const uint32_t field : fields)
        if (mode & field) merged = (merged & ~field) | (mode & field);
    block->mode = merged;
    return old;
}

int32_t table_index(uint32_t mode) { return static_cast<int32_t>(mode & mode_accuracy) - 1; }

}  // namespace
}  // namespace orv::frame

using namespace orv::frame;

ORV_API int32_t dll_cpu_version() { return 6; }

ORV_API uint32_t orv_arq_kernel_GetMode() { return get_mode(); }
ORV_API uint32_t _arqGetMode() { return get_mode(); }
ORV_API uint32_t orv_arq_kernel_SetMode(uint32_t mode) { return merge_mode(mode); }
ORV_API uint32_t _arqSetMode(uint32_t mode) { return merge_mode(mode); }
ORV_API int32_t orv_arq_kernel_GetTTableIndex() { return table_index(get_mode()); }
ORV_API int32_t orv_arq_kernel_GetTTableIndexM(uint32_t, uint32_t mode) { return table_index(mode); }
