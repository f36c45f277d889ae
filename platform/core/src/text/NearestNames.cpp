// SPDX-License-Identifier: MIT
#include <helvantine/core/NearestNames.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace helvantine
{

namespace
{

constexpr std::size_t s_most = 3;
constexpr std::size_t s_spread = 2;   ///< beside a near name those that are farther by more are noise
constexpr std::size_t s_longest = 64; ///< nobody mistypes more than that, and the distance costs the square

std::string toLower(std::string_view text)
{
    std::string lower(text);
    for (char& letter : lower) {
        if (letter >= 'A' && letter <= 'Z')
            letter = static_cast<char>(letter - 'A' + 'a');
    }
    return lower;
}

/// How many letters have to be put in, taken out, replaced or swapped with their neighbours.
std::size_t countEdits(const std::string& a, const std::string& b)
{
    std::vector<std::size_t> before(b.size() + 1);
    std::vector<std::size_t> above(b.size() + 1);
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        before = std::exchange(above, row);
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t replaced = above[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            row[j] = std::min({above[j] + 1, row[j - 1] + 1, replaced});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                row[j] = std::min(row[j], before[j - 2] + 1);
        }
    }
    return row.back();
}

bool isPartOf(const std::string& part, const std::string& whole)
{
    return part.size() >= 3 && whole.find(part) != std::string::npos;
}

} // namespace

std::vector<std::string> findNearestNames(std::string_view name, const std::vector<std::string>& names)
{
    std::vector<std::string> result;
    if (name.empty() || name.size() > s_longest)
        return result;
    const std::string wanted = toLower(name);
    const std::size_t farthest = (wanted.size() + 2) / 3;
    std::vector<std::pair<std::size_t, std::string>> found;
    for (const std::string& candidate : names) {
        if (candidate.empty() || candidate.size() > s_longest)
            continue;
        const std::string other = toLower(candidate);
        const std::size_t edits = countEdits(wanted, other);
        if (edits <= farthest)
            found.emplace_back(edits, candidate);
        else if (isPartOf(wanted, other) || isPartOf(other, wanted))
            found.emplace_back(farthest + 1, candidate);
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    for (auto& [edits, candidate] : found) {
        const bool isNearly = edits <= found.front().first + s_spread;
        if (isNearly && result.size() < s_most &&
            std::find(result.begin(), result.end(), candidate) == result.end())
            result.push_back(std::move(candidate));
    }
    return result;
}

std::string describeNearestNames(std::string_view name, const std::vector<std::string>& names)
{
    std::string text;
    for (const std::string& nearest : findNearestNames(name, names)) {
        text += text.empty() ? "; nearest: '" : ", '";
        text += nearest + '\'';
    }
    return text;
}

} // namespace helvantine
