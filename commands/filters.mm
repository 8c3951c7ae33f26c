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

/// The filters by what they do.
std::map<std::string, std::vector<const FilterInfo*>>
inGroups(const std::vector<const FilterInfo*>& filters) {
    std::map<std::string, std::vector<const FilterInfo*>> groups;
    for (const FilterInfo* filter : filters) groups[mainCategory(*filter)].push_back(filter);
    return groups;
}

/// A call of `kaz apply` with the filter's first number, vector or colour, and whatever images it needs.
std::string exampleOf(const FilterInfo& filter) {
    std::string words;
    bool valued = false;
    for (const InputInfo& input : filter.inputs) {
        std::string text = defaultOf(input);
        if (input.kind == engine::InputKind::image && input.key != "inputImage") {
            text = "second.jpg";
        } else if (input.key == "inputMessage") {
            text = "hello";
        } else if (valued || text.empty() || input.kind == engine::InputKind::image) {
            continue;
        } else {
            valued = true;
        }
        // A space or a # would be the shell's.
        if (text.find_first_of(" #'\"") != std::string::npos) text = "'" + text + "'";
        words += " " + shortKey(input.key) + "=" + text;
    }
    bool generates = !filter.findInput("inputImage");
    return std::string("./kaz apply ") + (generates ? "" : "photo.jpg ") + filter.name + words +
           (generates ? " --size 300x200" : "") + " -o out.png";
}

/// A sentence to follow another; empty if it is not known when the filter came.
std::string sinceText(const FilterInfo& filter) {
    bool known = filter.since.find('?') == std::string::npos;
    return known ? " Since Mac OS X " + filter.since + "." : "";
}

/// The reference's page of the filters.
void writeReference(const std::vector<const FilterInfo*>& filters) {
    std::printf(
        "# Filters\n\nWhat each filter does, its inputs, and a call of `./kaz apply` that shows it. In "
        "a program a key begins\nwith `input`: `filter.ValueAsNumber(\"inputRadius\")`. Positions and "
        "distances are in pixels.\n");
    for (auto& [category, members] : inGroups(filters)) {
        std::printf("\n## %s\n", category.c_str());
        for (const FilterInfo* filter : members) {
            std::printf("\n### %s\n\n%s. %s%s\n\n", filter->name.c_str(), filter->displayName.c_str(),
                        filter->description.c_str(), sinceText(*filter).c_str());
            if (!filter->inputs.empty())
                std::printf("| Input | Class | Type | Range | Default |\n|---|---|---|---|---|\n");
            for (const InputInfo& input : filter->inputs)
                std::printf("| %s | %s | %s | %s | %s |\n", shortKey(input.key).c_str(),
                            classOf(*filter, input).c_str(), meaningOf(input).c_str(), rangeOf(input).c_str(),
                            defaultOf(input).c_str());
            std::printf("\n```sh\n%s\n```\n", exampleOf(*filter).c_str());
        }
    }
}

void list(const std::vector<const FilterInfo*>& filters, bool sources) {
    bool first = true;
    for (auto& [category, members] : inGroups(filters)) {
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
    bool sources = false, markdown = false;
    std::vector<std::string> wanted;
    while (!words.atEnd()) {
        std::string word = words.take();
        if (word == "--source" || word == "--sources")
            sources = true;
        else if (word == "--markdown")
            markdown = true;
        else if (word.starts_with("-"))
            misuse("filters",
                   "there is no option " + word + studio::suggestion(word, {"--source", "--markdown"}));
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
    if (markdown)
        writeReference(found);
    else if (found.size() == 1 && !sources)
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
