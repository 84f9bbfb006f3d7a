// Writes <orv/vecmath_entries.h>: the declarations of every vector math entry and table from the row list, with each
// function's card, in which the worst errors are those of bounds.inc. A row that is present without a card is an error.
#include "frame/kernel_tables.h"
#include "function_cards.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <string_view>

namespace {

struct Card {
    std::string_view function, result, edges, accuracy, source;
};

struct Row {
    char type;
    std::string_view function, shape, sharing;
};

struct Bound {
    char type;
    std::string_view function, accuracy;
    double ulp;
    bool of_modulus;
};
#define BOUND(type, function, accuracy, ulp, subnormal_ulp) {#type[0], #function, #accuracy, ulp, false},
#define BOUND_OF_MODULUS(type, function, accuracy, ulp, subnormal_ulp) {#type[0], #function, #accuracy, ulp, true},
constexpr Bound bounds[] = {
#include "accuracy/bounds.inc"
};

#define CARD(function, result, edges, accuracy, source) {#function, result, edges, accuracy, source},
constexpr Card cards[] = {ORV_FUNCTION_CARDS(CARD)};
#undef CARD
#define CARD(function, edges, source) {#function, "", edges, "", source},
constexpr Card complex_cards[] = {ORV_COMPLEX_CARDS(CARD)};

#define ROW(type, function, shape, sharing, cost) {#type[0], #function, #shape, #sharing},
constexpr Row math_rows[] = {ORV_MATH_ROWS(ROW)};
constexpr Row move_rows[] = {ORV_MOVE_ROWS(ROW)};

std::string element(char type) {
    switch (type) {
        case 's':
            return "float";
        case 'd':
            return "double";
        case 'c':
            return "orv_complex_s";
        default:
            return "orv_complex_d";
    }
}

char real_of(char type) { return type == 'c' ? 's' : type == 'z' ? 'd' : type; }

std::string arguments(const Row& row, bool strided) {
    const std::string x = element(row.type);
    const std::string in = "const " + (row.shape == "TO_COMPLEX" ? element(real_of(row.type)) : x) + "* ";
    const std::string out = (row.shape == "TO_REAL" ? element(real_of(row.type)) : x) + "* ";
    const auto inc = [&](const char* name) { return strided ? std::string(", int32_t inc") + name : std::string(); };
    const std::string one = "int32_t n, " + in + "a" + inc("a");
    if (row.shape == "ONE" || row.shape == "TO_REAL" || row.shape == "TO_COMPLEX")
        return one + ", " + out + "y" + inc("y");
    if (row.shape == "TWO") return one + ", " + in + "b" + inc("b") + ", " + out + "y" + inc("y");
    if (row.shape == "SCALAR") return one + ", " + x + " b, " + out + "y" + inc("y");
    if (row.shape == "TWO_OUT") return one + ", " + out + "y" + inc("y") + ", " + out + "z" + inc("z");
    if (row.shape == "LINEAR")
        return one + ", " + in + "b" + inc("b") + ", " + x + " scalea, " + x + " shifta, " + x + " scaleb, " + x +
               " shiftb, " + out + "y" + inc("y");
    if (row.shape == "PACK_STRIDE") return "int64_t n, " + in + "a, int64_t inca, " + out + "y";
    if (row.shape == "PACK_LIST") return "int64_t n, " + in + "a, const int32_t* list, " + out + "y";
    if (row.shape == "UNPACK_STRIDE") return "int64_t n, " + in + "a, " + out + "y, int64_t incy";
    return "int64_t n, " + in + "a, " + out + "y, const int32_t* list";
}

struct Suffixes {
    char type;
    const char *la, *ep;
};
#define TEXT_(x) #x
#define TEXT(x) TEXT_(x)
#define SUFFIXES(type) \
    { #type[0], TEXT(ORV_LA_SUFFIX_##type), TEXT(ORV_EP_SUFFIX_##type) }
constexpr Suffixes suffixes[] = {SUFFIXES(s), SUFFIXES(d), SUFFIXES(c), SUFFIXES(z)};

const Suffixes& suffixes_of(char type) {
    return *std::find_if(std::begin(suffixes), std::end(suffixes), [=](const Suffixes& s) { return s.type == type; });
}

template <size_t N>
const Card* card_of(const Card (&list)[N], std::string_view function) {
    for (const Card& card : list)
        if (card.function == function) return &card;
    return nullptr;
}
// What there is to say of the function of complex numbers beside its card, if any.
const Card* complex_card_of(std::string_view function) {
    for (const Row& row : math_rows)
        if (row.function == function && (row.type == 'c' || row.type == 'z')) return card_of(complex_cards, function);
    return nullptr;
}

// A worst error as people read it: in ulp, or relative, as a power of two, where it is many.
std::string figure(const Bound& bound) {
    if (bound.ulp == 0) return "exact";
    char text[32];
    const int digits = bound.type == 's' || bound.type == 'c' ? 24 : 53;
    if (bound.ulp > 100)
        std::snprintf(text, sizeof text, "2^%.1f", std::ceil(10 * (std::log2(bound.ulp) + 1 - digits)) / 10);
    else
        std::snprintf(text, sizeof text, "%.3g", bound.ulp);
    return text + std::string(bound.of_modulus ? " of the modulus" : "");
}

// Such as "d LA 3.9, HA 0.53, EP 2^-28.1; s ...", for the types that are present.
std::string errors_of(std::string_view function) {
    std::string text;
    for (const char type : {'d', 's', 'z', 'c'}) {
        std::string of_type;
        for (const Row& row : math_rows) {
            if (row.function != function || row.type != type) continue;
            for (const Bound& bound : bounds) {
                if (bound.type != type || bound.function != function) continue;
                const bool also = bound.accuracy == "LA";
                const std::string slots = std::string(bound.accuracy) + (also && row.sharing == "LA_HA"   ? " and HA"
                                                                         : also && row.sharing == "LA_EP" ? " and EP"
                                                                                                          : "");
                of_type += (of_type.empty() ? " " : ", ") + (row.sharing == "ALL" ? "" : slots + " ") + figure(bound);
            }
        }
        if (!of_type.empty()) text += (text.empty() ? "" : "; ") + (type + of_type);
    }
    return text;
}

void declare(std::ostream& header, const Row& row, bool strided) {
    const std::string name = std::string(1, row.type) + std::string(row.function) + (strided ? "I" : "");
    for (const char* suffix : {"", "_HA", suffixes_of(row.type).la, suffixes_of(row.type).ep})
        header << "void _arq" << name << suffix << "(" << arguments(row, strided) << ");\n";
    header << "ORV_DATA orv_arq_kernel orv_arq_kernel_" << name << "_ttab[3];\n";
    header << "ORV_DATA float orv_arq_kernel_" << name << "_ctab[3];\n\n";
}

template <size_t N>
bool write_functions(std::ostream& header, const Row (&rows)[N], bool has_strided) {
    for (size_t i = 0; i < N; ++i) {
        const Row& first = rows[i];
        bool opens_card = true;
        for (size_t j = 0; j < i; ++j)
            if (rows[j].function == first.function) opens_card = false;
        if (!opens_card) continue;
        const Card* card = card_of(cards, first.function);
        if (!card) {
            std::cerr << "entrygen: " << first.function << " has no card\n";
            return false;
        }
        const std::string errors = errors_of(first.function);
        header << "/* " << card->function << ": y[i] = " << card->result << ".\n * " << card->edges << "\n * "
               << (errors.empty() ? "" : "Worst error, ulp: " + errors + ". ") << card->accuracy
               << (card->accuracy.empty() ? "" : " ") << "Source: " << card->source << ".";
        if (const Card* complex = complex_card_of(first.function))
            header << "\n * Of complex numbers: " << complex->edges << " Source: " << complex->source << ".";
        header << " */\n";
        for (const Row& row : rows) {
            if (row.function != first.function) continue;
            declare(header, row, false);
            if (has_strided) declare(header, row, true);
        }
    }
    return true;
}

// The rows as a macro, for programs that go through all of them.
void write_list(std::ostream& header) {
    const size_t all = 2 * std::size(math_rows) + std::size(move_rows);
    header << "/* The rows of the tables: " << all << " with the strided forms. */\n#define ORV_VECMATH_ROW_COUNT "
           << all << "\n\n"
           << "/* Calls ROW(type, function, shape) for each dense row. A row of ORV_VECMATH_ROWS has a "
              "strided form\n"
              " * too, one of ORV_VECMATH_MOVE_ROWS has not. */\n#define ORV_VECMATH_ROWS(ROW)";
    for (const Row& row : math_rows)
        header << " \\\n    ROW(" << row.type << ", " << row.function << ", " << row.shape << ")";
    header << "\n#define ORV_VECMATH_MOVE_ROWS(ROW)";
    for (const Row& row : move_rows)
        header << " \\\n    ROW(" << row.type << ", " << row.function << ", " << row.shape << ")";
    header << "\n\n/* The \"LA\" and the \"EP\" entry of a function, by type. */\n";
    for (const Suffixes& s : suffixes)
        header << "#define ORV_VECMATH_LA_" << s.type << "(function) _arq" << s.type << "##function##" << s.la
               << "\n#define ORV_VECMATH_EP_" << s.type << "(function) _arq" << s.type << "##function##" << s.ep
               << "\n";
    header << "\n";
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: entrygen HEADER\n";
        return 2;
    }
    std::ofstream header(argv[1]);
    header << "/* The entries of <orv/vecmath.h>, written from the library's row list: per function and type the "
              "\"HA\" entry under\n"
              " * its two names, the \"LA\" and the \"EP\" entry and the exported tables, dense and strided. n counts "
              "elements; a and b\n"
              " * hold the inputs, y (and z) the results, n elements each; increments count elements. */\n"
              "#ifndef ORV_VECMATH_ENTRIES_H\n#define ORV_VECMATH_ENTRIES_H\n\n#include <orv/vecmath.h>\n\n"
              "#ifdef __cplusplus\nextern \"C\" {\n#endif\n\n";
    if (!write_functions(header, math_rows, true) || !write_functions(header, move_rows, false)) {
        header.close();
        std::remove(argv[1]);
        return 1;
    }
    write_list(header);
    header << "#ifdef __cplusplus\n}\n#endif\n\n#endif\n";
    return header.good() ? 0 : 1;
}
