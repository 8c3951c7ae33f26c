// Fuzzing the lexer and the parser: any text is a program or a mistake with a place.
#include "syntax/ast.h"
#include "syntax/parser.h"
#include "syntax/source_error.h"

#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
    std::string_view text(reinterpret_cast<const char*>(bytes), size);
    auto tolerant = [](auto parse) {
        try {
            parse();
        } catch (const studio::SourceError& error) {
            if (error.position.line < 1 || error.position.column < 1) std::abort();
        }
    };
    tolerant([&] { studio::parseProgram(text); });
    tolerant([&] { studio::parseSignature(text); });
    tolerant([&] { studio::parseConstant(text); });
    return 0;
}
