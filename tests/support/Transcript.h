/// Whole dialogues, kept as text files: lines that begin with "> " are commands, those that follow
/// are the answer.
#ifndef TESTS_SUPPORT_TRANSCRIPT_H
#define TESTS_SUPPORT_TRANSCRIPT_H

#include <gtest/gtest.h>

#include <fstream>
#include <string>

/// Expects that `answer`, called with each command's text, gives the lines that the file has.
template <typename Answer>
void expectTranscript(const std::string& fileName, Answer answer) {
    std::ifstream file(fileName);
    std::string expected;
    std::string actual;
    for (std::string line; std::getline(file, line);) {
        expected += line + "\n";
        if (line.rfind("> ", 0) == 0) actual += line + "\n" + answer(line.substr(2));
    }
    EXPECT_NE(expected, "") << fileName;
    EXPECT_EQ(actual, expected);
}

#endif  // TESTS_SUPPORT_TRANSCRIPT_H
