// What the commands share: exit codes, messages and their words.
#include "command.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace commands {

void misuse(std::string_view command, const std::string& message) {
    std::fflush(stdout);
    std::fprintf(stderr, "kaz %.*s: %s\n", int(command.size()), command.data(), message.c_str());
    std::exit(kMistake);
}

Words::Words(std::string_view command, int count, char** words)
    : command_(command), words_(words + 1, words + count) {
    for (const std::string& word : words_)
        if (word == "--help" || word == "-h") {
            std::printf("./kaz help %.*s explains this command\n", int(command.size()), command.data());
            std::exit(kFine);
        }
}

std::string Words::valueOf(const std::string& option) {
    if (atEnd()) misuse(command_, option + " needs a value");
    return take();
}

bool parseNumber(std::string_view text, double& number) {
    std::string copy(text);
    // strtod would take blanks, hexadecimal digits, "inf" and "nan", too.
    if (copy.empty() || copy.find_first_not_of("+-.0123456789eE") != std::string::npos) return false;
    char* end = nullptr;
    double value = std::strtod(copy.c_str(), &end);
    if (*end || !std::isfinite(value)) return false;
    number = value;
    return true;
}

std::vector<std::string> split(std::string_view text, char at) {
    std::vector<std::string> parts;
    for (std::size_t begin = 0;;) {
        std::size_t end = text.find(at, begin);
        parts.emplace_back(text.substr(begin, end - begin));
        if (end == std::string_view::npos) return parts;
        begin = end + 1;
    }
}

std::string joined(const std::vector<std::string>& parts, std::string_view between) {
    std::string all;
    for (const std::string& part : parts) {
        if (&part != &parts.front()) all += between;
        all += part;
    }
    return all;
}

std::string shortNumber(double number) {
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", number == 0 ? 0 : number);
    return text;
}

} // namespace commands
