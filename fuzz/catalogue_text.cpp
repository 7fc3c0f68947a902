#include "fuzz/catalogue_text.h"

#include "fuzz/finding.h"
#include "vrml/catalogue.h"
#include "vrml/fields.h"

#include <algorithm>

namespace meshcast::fuzz {

namespace {

using Words = std::span<const std::string>;

constexpr std::size_t kLongestList = 14;

std::string several(Random& random, std::size_t count, std::string (*one)(Random&)) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += (i == 0 ? "" : " ") + one(random);
    }
    return text;
}

template <std::size_t Count>
std::string reals(Random& random, Words /*words*/) {
    return several(random, Count, randomReal);
}

std::string integer(Random& random, Words /*words*/) { return randomInteger(random); }

template <std::string (*One)(Random&, Words)>
std::string list(Random& random, Words words) {
    // Often the same length, since shapes need lists of equal lengths.
    constexpr std::size_t kUsual = 4;
    std::string text = "[ ";
    for (std::size_t count = random.oneIn(2) ? kUsual : random.below(kLongestList); count > 0;
         --count) {
        text += One(random, words) + ", ";
    }
    return text + "]";
}

std::string boolean(Random& random, Words /*words*/) {
    return std::string(random.oneOf(std::to_array<std::string_view>({"TRUE", "FALSE", "0", "1"})));
}

std::string word(Random& random, Words words) {
    return words.empty() ? "NONE" : random.oneOf(words);
}

std::string mask(Random& random, Words words) {
    if (random.oneIn(2)) {
        return word(random, words);
    }
    std::string text = "( " + word(random, words);
    for (std::size_t count = random.below(3); count > 0; --count) {
        text += " | " + word(random, words);
    }
    return text + " )";
}

std::string text(Random& random, Words /*words*/) {
    return std::string(random.oneOf(std::to_array<std::string_view>(
        {"\"\"", "\"x\"", "word", "\"two words\"", "\"a \\\" b\"", "\"} {\"", "a.rgb", "/d/b.gif",
         "\"http://h/it's.jpeg\"", "x.tiff", "\"#\"", "\"line\nline\""})));
}

std::string image(Random& random, Words /*words*/) {
    const std::size_t width = random.below(4);
    const std::size_t height = random.below(4);
    const auto size = [](std::size_t number) { return std::to_string(number) + " "; };
    std::string value = size(width) + size(height) + size(random.below(6));
    for (std::size_t pixel = 0; pixel < width * height; ++pixel) {
        value += "0x" + size(random.below(0x7FFFFFFF));
    }
    return random.oneIn(12) ? randomInteger(random) + " " + randomInteger(random) + " 3 1" : value;
}

/// In the order of meshcast::FieldType.
constexpr ValueWriter kFieldTypes[] = {
    {"MFColor", list<reals<3>>}, {"MFFloat", list<reals<1>>}, {"MFLong", list<integer>},
    {"MFVec2f", list<reals<2>>}, {"MFVec3f", list<reals<3>>}, {"SFBitMask", mask},
    {"SFBool", boolean},         {"SFColor", reals<3>},       {"SFEnum", word},
    {"SFFloat", reals<1>},       {"SFImage", image},          {"SFLong", integer},
    {"SFMatrix", reals<16>},     {"SFRotation", reals<4>},    {"SFString", text},
    {"SFVec2f", reals<2>},       {"SFVec3f", reals<3>},
};

CatalogueClass describe(const ClassInfo& nodeClass) {
    CatalogueClass described{nodeClass.name, nodeClass.isGroup, {}};
    for (const FieldInfo& field : nodeClass.fields) {
        CatalogueField& added = described.fields.emplace_back();
        added.name = field.name;
        added.type = &kFieldTypes[static_cast<std::size_t>(field.type)];
        check(added.type->name == fieldTypeName(field.type), "the field types are out of order");
        for (const EnumWord& word :
             field.words ? field.words->words() : std::span<const EnumWord>()) {
            added.words.emplace_back(word.word);
        }
    }
    return described;
}

std::string fieldText(const CatalogueField& field, Random& random) {
    return " " + field.name + " " + field.randomValue(random) + (random.oneIn(30) ? " ~" : "");
}

std::string undeclaredNode(Random& random) {
    std::string declarations;
    std::string values;
    for (char name = 'a'; name < 'd'; ++name) {
        const ValueWriter& type = random.oneOf(kFieldTypes);
        const std::string text(1, name);
        declarations.append(type.name).append(" ").append(text).append(", ");
        if (random.oneIn(2)) {
            values.append(" ").append(text).append(" ").append(type.value(random, {}));
        }
    }
    return "Unheard { fields [ " + declarations + "]" + values + " }";
}

} // namespace

std::span<const ValueWriter> fieldTypes() { return kFieldTypes; }

const CatalogueField* CatalogueClass::find(std::string_view fieldName) const {
    const auto found = std::find_if(fields.begin(), fields.end(),
                                    [=](const auto& field) { return field.name == fieldName; });
    return found == fields.end() ? nullptr : &*found;
}

std::span<const CatalogueClass> catalogue() {
    static const std::vector<CatalogueClass> classes = [] {
        std::vector<CatalogueClass> described;
        for (const ClassInfo& nodeClass : nodeClasses()) {
            described.push_back(describe(nodeClass));
        }
        return described;
    }();
    return classes;
}

const CatalogueClass* findClass(std::string_view name) {
    const auto classes = catalogue();
    const auto found = std::find_if(classes.begin(), classes.end(),
                                    [=](const auto& each) { return each.name == name; });
    return found == classes.end() ? nullptr : &*found;
}

std::string randomInteger(Random& random) {
    if (random.oneIn(40)) {
        return std::string(random.oneOf(std::to_array<std::string_view>(
            {"-2", "-3", "100", "65536", "32767", "-32768", "2147483647", "-2147483648",
             "99999999999", "0x7fffffff", "0xffffffff", "017", "-0"})));
    }
    return random.oneIn(4) ? "-1" : std::to_string(random.below(kLongestList));
}

std::string randomReal(Random& random) {
    if (random.oneIn(30)) {
        return std::string(random.oneOf(std::to_array<std::string_view>(
            {"1e999", "-1e999", "-0.0", "1e-45", "1e-30", "3.4e38", "-3.4e38", "1e19", "1e-20",
             "0.33333333333333333333", "16777217", "1e", "."})));
    }
    const std::string whole = std::to_string(random.below(4));
    const std::string_view sign = random.oneIn(4) ? "-" : "";
    const std::string_view rest =
        random.oneOf(std::to_array<std::string_view>({"", "", ".5", ".25", ".1", "e1"}));
    return std::string(sign).append(whole).append(rest);
}

std::string randomNode(Random& random) {
    if (random.oneIn(20)) {
        return undeclaredNode(random);
    }
    const CatalogueClass& chosen = random.oneOf(catalogue());
    std::string node(chosen.name);
    node += " {";
    for (const CatalogueField& field : chosen.fields) {
        if (!random.oneIn(3)) {
            node += fieldText(field, random);
        }
    }
    if (chosen.isGroup && random.oneIn(2)) {
        node += " " + randomNode(random) + " " + randomNode(random);
    }
    return node + " }";
}

} // namespace meshcast::fuzz
