// SPDX-License-Identifier: GPL-3.0-or-later
//
// fitpoly: the runtime's polynomial fit, for checking it from a shell. Reads
// "n k" and n lines "x y" from standard input and prints the k coefficients
// with 17 significant digits, lowest power first, one a line. Exit status 0, 2
// for input that is not of that form, 1 when the fit failed.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "host/operations.h"

namespace
{

constexpr int BAD_INPUT = 2;
constexpr int MOST_POINTS = 10000000;
constexpr int MOST_COEFFS = 1000;

int refuse(long line, const std::string &reason)
{
    std::cerr << "fitpoly: line " << line << ": " << reason << '\n';
    return BAD_INPUT;
}

// The words of a line, split at white space.
std::vector<std::string> words_of(const std::string &line)
{
    std::istringstream stream(line);
    std::vector<std::string> words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

// One whole word as a finite number, nearest double; false otherwise.
bool to_number(const std::string &word, double &value)
{
    const bool plus = word.size() > 1 && word[0] == '+' && word[1] != '-';
    const char *end = word.data() + word.size();
    const auto result = std::from_chars(word.data() + plus, end, value);
    return result.ec == std::errc() && result.ptr == end && std::isfinite(value);
}

bool to_count(const std::string &word, int most, int &value)
{
    const char *end = word.data() + word.size();
    const auto result = std::from_chars(word.data(), end, value);
    return result.ec == std::errc() && result.ptr == end && value >= 1 && value <= most;
}

struct Points {
    int coeff_count = 0;
    std::vector<double> x;
    std::vector<double> y;
};

// The next line that is not blank; false at the end.
bool next_line(long &number, std::vector<std::string> &words)
{
    for (std::string line; std::getline(std::cin, line);) {
        ++number;
        words = words_of(line);
        if (!words.empty())
            return true;
    }
    return false;
}

// 0, or BAD_INPUT with the reason on standard error.
int read_points(Points &points)
{
    long line = 0;
    std::vector<std::string> words;
    if (!next_line(line, words))
        return refuse(1, "no input; expected \"n k\" and n lines \"x y\"");
    int count = 0;
    if (words.size() != 2 || !to_count(words[0], MOST_POINTS, count) ||
        !to_count(words[1], MOST_COEFFS, points.coeff_count))
        return refuse(line, "expected \"n k\": the number of points, 1 to " +
                                std::to_string(MOST_POINTS) + ", and of coefficients, 1 to " +
                                std::to_string(MOST_COEFFS));
    for (int i = 0; i < count; ++i) {
        if (!next_line(line, words))
            return refuse(line + 1, "the input ends after " + std::to_string(i) + " of " +
                                        std::to_string(count) + " points");
        double x = 0.0, y = 0.0;
        if (words.size() != 2 || !to_number(words[0], x) || !to_number(words[1], y))
            return refuse(line, "expected \"x y\": two finite numbers");
        points.x.push_back(x);
        points.y.push_back(y);
    }
    if (next_line(line, words))
        return refuse(line, "more lines than the " + std::to_string(count) + " points announced");
    return 0;
}

} // namespace

int main()
{
    Points points;
    if (const int status = read_points(points))
        return status;
    std::vector<double> coeffs(static_cast<std::size_t>(points.coeff_count));
    const int32_t result = polynomialfit(static_cast<int32_t>(points.x.size()), points.coeff_count,
                                         points.x.data(), points.y.data(), coeffs.data());
    if (result != 0) {
        std::cerr << "fitpoly: the fit failed\n";
        return 1;
    }
    for (const double coeff : coeffs)
        std::printf("%.16e\n", coeff);
    return std::fflush(stdout) == 0 ? 0 : 1;
}
