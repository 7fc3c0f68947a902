// Repairs the scene on standard input.

#include "tidy/tidy.h"

#include <iostream>
#include <iterator>
#include <string>

int main() {
    std::string bytes(std::istreambuf_iterator<char>(std::cin), {});
    meshcast::tidy::Options options;
    options.path = "<stdin>";
    options.report = [](const meshcast::tidy::Message& message) {
        std::cerr << message.file << ':' << message.line << ": " << message.what << '\n';
    };
    const meshcast::tidy::Result result = meshcast::tidy::tidy(std::move(bytes), options);
    if (!result.text) {
        std::cerr << result.refusal << '\n';
        return 1;
    }
    std::cout << *result.text;
}
