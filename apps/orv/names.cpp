#include "names.h"

#include <algorithm>
#include <cctype>

namespace orv::command {

namespace {

char lower(char letter) { return static_cast<char>(std::tolower(static_cast<unsigned char>(letter))); }

// Letters to insert, drop, change or exchange with their neighbours, by Wagner and Fischer's table with the exchanges of
// Damerau. Case counts for nothing.
size_t distance(std::string_view a, std::string_view b) {
    std::vector<std::vector<size_t>> least(a.size() + 1, std::vector<size_t>(b.size() + 1));
    for (size_t i = 0; i <= a.size(); ++i)
        for (size_t j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                least[i][j] = i + j;
                continue;
            }
            const bool same = lower(a[i - 1]) == lower(b[j - 1]);
            least[i][j] = std::min({least[i - 1][j] + 1, least[i][j - 1] + 1, least[i - 1][j - 1] + (same ? 0 : 1)});
            if (i > 1 && j > 1 && lower(a[i - 1]) == lower(b[j - 2]) && lower(a[i - 2]) == lower(b[j - 1]))
                least[i][j] = std::min(least[i][j], least[i - 2][j - 2] + 1);
        }
    return least[a.size()][b.size()];
}

}  // namespace

bool same_letters(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return lower(x) == lower(y); });
}

std::string nearest(std::string_view wanted, const std::vector<std::string>& names) {
    // One change in three letters: beyond, the resemblance is by chance.
    size_t least = std::max<size_t>(1, wanted.size() / 3) + 1;
    std::string found;
    for (const std::string& name : names) {
        const size_t changes = distance(wanted, name);
        if (changes < least) least = changes, found = name;
    }
    return found;
}

std::string no_such(const std::string& kind, std::string_view wanted, const std::vector<std::string>& names) {
    std::string text = "no " + kind + " " + std::string(wanted) + "; ";
    const std::string near = nearest(wanted, names);
    text += near.empty() ? "there " : "did you mean " + near + "? There ";
    text += names.size() == 1 ? "is " : "are ";
    for (const std::string& name : names) text += (&name == &names.front() ? "" : ", ") + name;
    return text;
}

}  // namespace orv::command
