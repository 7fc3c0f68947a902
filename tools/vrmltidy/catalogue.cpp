#include "tools/vrmltidy/catalogue.h"

#include "vrml/catalogue.h"
#include "vrml/characters.h"
#include "vrml/nodes.h"

#include <algorithm>
#include <unordered_map>

namespace meshcast::tidy {

namespace {

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

using Kind = ValueType::Kind;

/// What the text of a field is made of, by FieldType.
constexpr ValueType kTypes[] = {
    {Kind::kReal, 3, true}, {Kind::kReal, 1, true}, {Kind::kInteger, 1, true},
    {Kind::kReal, 2, true}, {Kind::kReal, 3, true}, {Kind::kMask},
    {Kind::kBool},          {Kind::kReal, 3},       {Kind::kEnum},
    {Kind::kReal, 1},       {Kind::kImage},         {Kind::kInteger, 1},
    {Kind::kReal, 16},      {Kind::kReal, 4},       {Kind::kString},
    {Kind::kReal, 2},       {Kind::kReal, 3},
};

ValueType valueType(FieldType type, const Enumeration* words) {
    ValueType value = kTypes[static_cast<std::size_t>(type)];
    value.words = words;
    return value;
}

ClassInfo describe(const meshcast::ClassInfo& nodeClass) {
    ClassInfo info;
    info.name = nodeClass.name;
    info.isGroup = nodeClass.isGroup;
    info.picksChild = nodeClass.name == QvSwitch::kClass.name ||
                      nodeClass.fields.data() == QvLevelOfDetail::kClass.fields.data();
    info.isInline = nodeClass.name == QvWWWInline::kClass.name;
    for (const meshcast::FieldInfo& field : nodeClass.fields) {
        info.addField(field.name, valueType(field.type, field.words));
    }
    return info;
}

/// Every class, by name. Never destroyed: frames point into it.
const std::unordered_map<std::string_view, ClassInfo>& classes() {
    static const auto& table = *[] {
        auto* const made = new std::unordered_map<std::string_view, ClassInfo>;
        for (const meshcast::ClassInfo& nodeClass : nodeClasses()) {
            made->emplace(nodeClass.name, describe(nodeClass));
        }
        return made;
    }();
    return table;
}

/// Words of other dialects (letters and digits only, in lower case) and the words that they mean,
/// where a field has them.
struct Synonym {
    std::string_view dialect;
    std::string_view meant;
};
constexpr Synonym kSynonyms[] = {
    {"ccw", "COUNTERCLOCKWISE"},
    {"anticlockwise", "COUNTERCLOCKWISE"},
    {"cw", "CLOCKWISE"},
    {"convexface", "CONVEX"},
    {"begin", "LEFT"},
    {"first", "LEFT"},
    {"middle", "CENTER"},
    {"centre", "CENTER"},
    {"centered", "CENTER"},
    {"end", "RIGHT"},
    {"sansserif", "SANS"},
    {"helvetica", "SANS"},
    {"times", "SERIF"},
    {"roman", "SERIF"},
    {"courier", "TYPEWRITER"},
    {"monospace", "TYPEWRITER"},
    {"fixed", "TYPEWRITER"},
    {"plain", "NONE"},
    {"normal", "NONE"},
    {"regular", "NONE"},
    {"oblique", "ITALIC"},
    {"true", "ON"},
    {"false", "OFF"},
    {"true", "REPEAT"},
    {"false", "CLAMP"},
    {"clamped", "CLAMP"},
    {"repeated", "REPEAT"},
    {"side", "SIDES"},
    {"perpart", "PER_PART"},
    {"facet", "PER_FACE"},
    {"perpolygon", "PER_FACE"},
    {"vertex", "PER_VERTEX"},
};

/// The letters and digits of a word in lower case.
std::string bare(std::string_view word) {
    std::string text;
    for (const char c : word) {
        if (isNameCharacter(c) && c != '_') {
            text += lower(c);
        }
    }
    return text;
}

} // namespace

const FieldInfo* ClassInfo::field(std::string_view fieldName) const {
    if (!places_.empty()) {
        const auto place = places_.find(std::string(fieldName));
        return place == places_.end() ? nullptr : &fields_[place->second];
    }
    const auto found =
        std::find_if(fields_.begin(), fields_.end(),
                     [fieldName](const FieldInfo& field) { return field.name == fieldName; });
    return found == fields_.end() ? nullptr : &*found;
}

const FieldInfo* ClassInfo::fieldInAnyCase(std::string_view fieldName) const {
    if (!places_.empty()) {
        return nullptr; // Too many to be searched for each unknown word.
    }
    const auto found =
        std::find_if(fields_.begin(), fields_.end(), [fieldName](const FieldInfo& field) {
            return equalInAnyCase(field.name, fieldName);
        });
    return found == fields_.end() ? nullptr : &*found;
}

void ClassInfo::addField(std::string_view fieldName, ValueType type) {
    constexpr std::size_t kLongestSearched = 16;
    fields_.push_back({std::string(fieldName), type});
    if (fields_.size() > kLongestSearched) {
        for (std::size_t i = places_.empty() ? 0 : fields_.size() - 1; i < fields_.size(); ++i) {
            places_.emplace(fields_[i].name, i);
        }
    }
}

const ClassInfo* findClass(std::string_view name) {
    const auto found = classes().find(name);
    return found == classes().end() ? nullptr : &found->second;
}

const ClassInfo* findClassInAnyCase(std::string_view name) {
    const auto found = std::find_if(classes().begin(), classes().end(), [name](const auto& entry) {
        return equalInAnyCase(entry.first, name);
    });
    return found == classes().end() ? nullptr : &found->second;
}

std::optional<ValueType> declaredType(std::string_view typeName) {
    const std::optional<FieldType> type = findFieldType(typeName);
    return type ? std::optional(valueType(*type, nullptr)) : std::nullopt;
}

bool holdsWord(const Enumeration* words, std::string_view word) {
    return words != nullptr && words->find(word) != nullptr;
}

std::string_view meantWord(const Enumeration* words, std::string_view written) {
    const std::string text = bare(written);
    if (words == nullptr || text.empty()) {
        return {};
    }
    std::vector<std::string_view> begun;
    for (const auto& [word, value] : words->words()) {
        const std::string candidate = bare(word);
        if (candidate == text) {
            return word;
        }
        if (candidate.starts_with(text)) {
            begun.push_back(word);
        }
    }
    for (const Synonym& synonym : kSynonyms) {
        if (synonym.dialect == text && holdsWord(words, synonym.meant)) {
            return synonym.meant;
        }
    }
    // "UNKNOWN" for UNKNOWN_ORDERING: a beginning that only one word has, and no mere letter.
    constexpr std::size_t kShortestBeginning = 3;
    return begun.size() == 1 && text.size() >= kShortestBeginning ? begun.front()
                                                                  : std::string_view();
}

bool equalInAnyCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                              [](char x, char y) { return lower(x) == lower(y); });
}

} // namespace meshcast::tidy
