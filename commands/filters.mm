// The program kaz_filters: lists the filters, or shows one.
#include "catalogue.h"
#include "command.h"

#include <syntax/names.h>

#import <Foundation/Foundation.h>

#include <algorithm>
#include <cstdio>
#include <map>

namespace {

using namespace commands;
using engine::FilterInfo;
using engine::InputInfo;

bool has(const FilterInfo& filter, const std::string& word) {
    std::string all = filter.name + "\n" + filter.displayName + "\n" + filter.description;
    for (const std::string& category : categoryNames(filter)) all += "\n" + category;
    return studio::folded(all).find(studio::folded(word)) != std::string::npos;
}

/// Lines of columns, each as wide as its widest cell.
void printTable(const std::vector<std::vector<std::string>>& rows) {
    std::vector<std::size_t> widths;
    for (auto& row : rows)
        for (std::size_t i = 0; i < row.size(); ++i) {
            if (widths.size() <= i) widths.push_back(0);
            widths[i] = std::max(widths[i], row[i].size());
        }
    for (auto& row : rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i)
            line += "  " + row[i] + std::string(widths[i] - row[i].size(), ' ');
        std::printf("%s\n", line.substr(0, line.find_last_not_of(' ') + 1).c_str());
    }
}

void show(const FilterInfo& filter) {
    std::printf("%s: %s\n%s\n\n", filter.name.c_str(), filter.displayName.c_str(),
                filter.description.c_str());
    std::vector<std::vector<std::string>> rows{{"input", "class", "type", "range", "default"}};
    for (const InputInfo& input : filter.inputs)
        rows.push_back({shortKey(input.key), classOf(filter, input), meaningOf(input), rangeOf(input),
                        defaultOf(input)});
    printTable(rows);
    std::printf("\ncategories: %s\nsince:      Mac OS X %s\nformula:    %s\n",
                joined(categoryNames(filter), ", ").c_str(), filter.since.c_str(),
                sourceText(filter.source).c_str());
}

void list(const std::vector<const FilterInfo*>& filters, bool sources) {
    std::map<std::string, std::vector<const FilterInfo*>> groups;
    for (const FilterInfo* filter : filters) groups[mainCategory(*filter)].push_back(filter);
    bool first = true;
    for (auto& [category, members] : groups) {
        std::printf("%s%s\n", first ? "" : "\n", category.c_str());
        first = false;
        std::vector<std::vector<std::string>> rows;
        for (const FilterInfo* filter : members)
            rows.push_back({filter->name, sources ? sourceText(filter->source) : filter->description});
        printTable(rows);
    }
}

int run(int count, char** arguments) {
    Words words("filters", count, arguments);
    bool sources = false;
    std::vector<std::string> wanted;
    while (!words.atEnd()) {
        std::string word = words.take();
        if (word == "--source" || word == "--sources")
            sources = true;
        else if (word.starts_with("-"))
            misuse("filters", "there is no option " + word + studio::suggestion(word, {"--source"}));
        else
            wanted.push_back(word);
    }
    const FilterInfo* exact = wanted.size() == 1 ? filterNamed(wanted[0]) : nullptr;
    std::vector<const FilterInfo*> found;
    for (const FilterInfo* filter : engine::allFilters()) {
        bool fits = std::all_of(wanted.begin(), wanted.end(),
                                [&](const std::string& word) { return has(*filter, word); });
        if (exact ? filter == exact : fits) found.push_back(filter);
    }
    if (found.empty())
        misuse("filters", "no filter has '" + joined(wanted, " ") + "' in its name, description or category" +
                              (wanted.size() == 1 ? filterSuggestion(wanted[0]) : ""));
    if (found.size() == 1 && !sources)
        show(*found[0]);
    else
        list(found, sources);
    return kFine;
}

} // namespace

int main(int count, char** arguments) {
    @autoreleasepool {
        return run(count, arguments);
    }
}
