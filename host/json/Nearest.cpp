#include "host/json/Nearest.h"
#include <algorithm>
#include <numeric>

namespace fernwick {

namespace {

char Lower(char letter) { return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter; }

/// How many letters must be put in, left out or changed to turn one name into the other; case doesn't count.
size_t Distance(std::string_view left, std::string_view right)
{
    std::vector<size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t i = 0; i < left.size(); ++i) {
        size_t diagonal = row[0];
        row[0] = i + 1;
        for (size_t j = 0; j < right.size(); ++j) {
            const size_t changed = diagonal + (Lower(left[i]) != Lower(right[j]));
            diagonal = row[j + 1];
            row[j + 1] = std::min({changed, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

} // namespace

std::string NearestHint(std::string_view name, const std::vector<std::string>& known)
{
    constexpr size_t kLongestName = 255;      // the distance costs the product of the lengths
    constexpr size_t kMostWork = 100'000'000; // so that a hint among very many names comes soon
    size_t work = 0;
    size_t nearest = name.size() > kLongestName ? 0 : std::max<size_t>(2, name.size() / 3) + 1;
    const std::string* found = nullptr;
    for (const std::string& candidate : known) {
        const size_t apart
            = std::max(name.size(), candidate.size()) - std::min(name.size(), candidate.size());
        if (apart >= nearest || (work += name.size() * candidate.size()) > kMostWork)
            continue;
        const size_t distance = Distance(name, candidate);
        if (distance < nearest && distance < candidate.size()) {
            nearest = distance;
            found = &candidate;
        }
    }
    return found != nullptr ? "; did you mean \"" + *found + "\"?" : "";
}

} // namespace fernwick
