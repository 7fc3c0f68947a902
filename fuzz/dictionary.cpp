#include "fuzz/catalogue_text.h"

#include <cstdio>
#include <set>
#include <string>

// Prints the words of the scene language as a dictionary for libFuzzer.

namespace {

using namespace meshcast::fuzz;

std::set<std::string> catalogueWords() {
    std::set<std::string> words;
    for (const ValueWriter& type : fieldTypes()) {
        words.emplace(type.name);
    }
    for (const CatalogueClass& each : catalogue()) {
        words.emplace(each.name);
        for (const CatalogueField& field : each.fields) {
            words.insert(field.name);
            words.insert(field.words.begin(), field.words.end());
        }
    }
    return words;
}

} // namespace

int main() {
    std::puts("\"#VRML V1.0 ascii\\x0a\"");
    for (const char* const word : {"DEF", "USE", "NULL", "TRUE", "FALSE", "fields", "{ ", " }",
                                   "[ ", " ]", "( ", " | ", " )", "-1, ", "0x", "1e999", "~"}) {
        std::printf("\"%s\"\n", word);
    }
    for (const std::string& word : catalogueWords()) {
        std::printf("\"%s\"\n", word.c_str());
    }
    return 0;
}
