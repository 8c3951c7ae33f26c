// What the commands share: exit codes, messages and their words.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace commands {

/// The studio's codes: something failed while running; the command line was wrong.
enum Exit { kFine = 0, kFailed = 1, kMistake = 2 };

/// Prints "kaz apply: message" and ends the program with kMistake.
[[noreturn]] void misuse(std::string_view command, const std::string& message);

/// The arguments of a command, one word after the other.
class Words {
  public:
    /// Answers --help and ends the program: the launcher has the commands' texts.
    Words(std::string_view command, int count, char** words);

    bool atEnd() const { return next_ == words_.size(); }
    std::string take() { return words_[next_++]; }
    /// What follows the option just taken. Ends the program if nothing does.
    std::string valueOf(const std::string& option);

  private:
    std::string_view command_;
    std::vector<std::string> words_;
    std::size_t next_ = 0;
};

/// A number that fills the text. False, and `number` unchanged, if there is none.
bool parseNumber(std::string_view text, double& number);
std::vector<std::string> split(std::string_view text, char at);
std::string joined(const std::vector<std::string>& parts, std::string_view between);
/// A number in as few digits as tell it: "0.5", "100", "1e+06".
std::string shortNumber(double number);

} // namespace commands
