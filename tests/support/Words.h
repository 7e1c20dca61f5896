// Tables of short texts, many rows to a line.

#ifndef ARXIUM_TESTS_SUPPORT_WORDS_H
#define ARXIUM_TESTS_SUPPORT_WORDS_H

#include <sstream>
#include <string>
#include <vector>

using Words = std::vector<std::string>;

// Rows end with ",", and blanks part the words of a row; "-" stands for an empty word.
inline std::vector<Words> table(std::string const& text)
{
    std::vector<Words> rows;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line, ',');)
    {
        rows.emplace_back();
        std::istringstream row(line);
        for (std::string word; row >> word;)
            rows.back().push_back(word == "-" ? "" : word);
    }
    return rows;
}

#endif
