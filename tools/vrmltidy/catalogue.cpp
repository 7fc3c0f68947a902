#include "tools/vrmltidy/catalogue.h"

#include "vrml/characters.h"
#include "vrml/fields.h"
#include "vrml/nodes.h"
#include "vrml/registry.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <memory>
#include <unordered_map>

namespace meshcast::tidy {

namespace {

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

using Kind = ValueType::Kind;

/// A type of field and what its text is made of. A bit mask is an enumeration too, so it stands
/// before that.
struct TypeRow {
    bool (*matches)(const QvField&);
    ValueType type;
};

template <class Field>
bool isA(const QvField& field) {
    return dynamic_cast<const Field*>(&field) != nullptr;
}

constexpr TypeRow kTypes[] = {
    {isA<QvSFFloat>, {Kind::kReal, 1}},
    {isA<QvSFReals<2>>, {Kind::kReal, 2}},
    {isA<QvSFReals<3>>, {Kind::kReal, 3}},
    {isA<QvSFReals<4>>, {Kind::kReal, 4}},
    {isA<QvSFReals<16>>, {Kind::kReal, 16}},
    {isA<QvMFieldOf<float, 1>>, {Kind::kReal, 1, true}},
    {isA<QvMFieldOf<float, 2>>, {Kind::kReal, 2, true}},
    {isA<QvMFieldOf<float, 3>>, {Kind::kReal, 3, true}},
    {isA<QvSFLong>, {Kind::kInteger, 1}},
    {isA<QvMFieldOf<std::int32_t, 1>>, {Kind::kInteger, 1, true}},
    {isA<QvSFBool>, {Kind::kBool}},
    {isA<QvSFBitMask>, {Kind::kMask}},
    {isA<QvSFEnum>, {Kind::kEnum}},
    {isA<QvSFString>, {Kind::kString}},
    {isA<QvSFImage>, {Kind::kImage}},
};

ValueType typeOf(const QvField& field) {
    const TypeRow* const row =
        std::find_if(std::begin(kTypes), std::end(kTypes),
                     [&field](const TypeRow& candidate) { return candidate.matches(field); });
    ValueType type = row->type;
    if (const auto* const words = dynamic_cast<const QvSFEnum*>(&field)) {
        type.words = words->words();
    }
    return type;
}

ClassInfo describe(const NodeClass& nodeClass) {
    NodePool nodes;
    QvNode& node = *nodeClass.create(nodes);
    const FieldTable& table = node.getFieldTable();
    ClassInfo info;
    info.name = nodeClass.name;
    info.isGroup = dynamic_cast<const QvGroup*>(&node) != nullptr;
    info.picksChild = dynamic_cast<const QvSwitch*>(&node) != nullptr ||
                      dynamic_cast<const QvLevelOfDetail*>(&node) != nullptr;
    info.isInline = dynamic_cast<const QvWWWInline*>(&node) != nullptr;
    for (const FieldTable::FieldEntry& entry : table.fields()) {
        info.addField(entry.name.view(), typeOf(*table.findField(node, entry.name)));
    }
    return info;
}

/// Every class, by name. Never destroyed: frames point into it.
const std::unordered_map<std::string_view, ClassInfo>& classes() {
    static const auto& table = *[] {
        auto* const made = new std::unordered_map<std::string_view, ClassInfo>;
        for (const NodeClass& nodeClass : nodeClasses()) {
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
    const std::unique_ptr<QvField> field = createField(typeName);
    return field == nullptr ? std::nullopt : std::optional(typeOf(*field));
}

bool holdsWord(const EnumTable* words, std::string_view word) {
    return words != nullptr &&
           std::any_of(words->names.begin(), words->names.end(),
                       [word](InternedName name) { return name.view() == word; });
}

std::string_view meantWord(const EnumTable* words, std::string_view written) {
    const std::string text = bare(written);
    if (words == nullptr || text.empty()) {
        return {};
    }
    std::vector<std::string_view> begun;
    for (const InternedName name : words->names) {
        const std::string candidate = bare(name.view());
        if (candidate == text) {
            return name.view();
        }
        if (candidate.starts_with(text)) {
            begun.push_back(name.view());
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
