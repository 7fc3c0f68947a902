#include "tidy/node_class.h"

#include "vrml/catalogue.h"
#include "vrml/fields.h"
#include "vrml/nodes.h"

#include <algorithm>

namespace meshcast::tidy {

namespace {

using Kind = ValueType::Kind;

constexpr char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

/// The syntax of values by FieldType.
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

NodeClass describe(const ClassInfo& info) {
    NodeClass made;
    made.name = info.name;
    made.isGroup = info.isGroup;
    made.keepsItsState =
        info.name == QvSeparator::kClass.name || info.name == QvWWWAnchor::kClass.name;
    made.picksChild = info.name == QvSwitch::kClass.name ||
                      info.fields.data() == QvLevelOfDetail::kClass.fields.data();
    made.isInline = info.name == QvWWWInline::kClass.name;
    made.namesImage = info.name == QvTexture2::kClass.name;
    made.setsCoordinates = info.name == QvCoordinate3::kClass.name;
    made.drawsPoints = info.name == QvPointSet::kClass.name;
    for (const FieldInfo& field : info.fields) {
        made.addField(field.name, valueType(field.type, field.words));
    }
    return made;
}

using Classes = std::map<std::string_view, NodeClass>;

/// All classes of the catalogue. Never destroyed: open nodes point into it.
const Classes& classes() {
    static const Classes& table = *[] {
        auto* const made = new Classes;
        for (const ClassInfo& info : nodeClasses()) {
            made->emplace(info.name, describe(info));
        }
        return made;
    }();
    return table;
}

} // namespace

const Field* NodeClass::field(std::string_view fieldName) const {
    if (!places_.empty()) {
        const auto place = places_.find(fieldName);
        return place == places_.end() ? nullptr : &fields[place->second];
    }
    const auto found = std::find_if(fields.begin(), fields.end(), [fieldName](const Field& field) {
        return field.name == fieldName;
    });
    return found == fields.end() ? nullptr : &*found;
}

const Field* NodeClass::fieldInAnyCase(std::string_view fieldName) const {
    if (!places_.empty()) {
        return nullptr; // Searching so many for each unknown word would be too slow.
    }
    const auto found = std::find_if(fields.begin(), fields.end(), [fieldName](const Field& field) {
        return equalInAnyCase(field.name, fieldName);
    });
    return found == fields.end() ? nullptr : &*found;
}

void NodeClass::addField(std::string_view fieldName, ValueType type) {
    constexpr std::size_t kLongestSearched = 16;
    fields.push_back({std::string(fieldName), type});
    if (fields.size() > kLongestSearched) {
        for (std::size_t i = places_.empty() ? 0 : fields.size() - 1; i < fields.size(); ++i) {
            places_.emplace(fields[i].name, i);
        }
    }
}

const NodeClass* findClass(std::string_view name) {
    const auto found = classes().find(name);
    return found == classes().end() ? nullptr : &found->second;
}

const NodeClass* findClassInAnyCase(std::string_view name) {
    const auto found = std::find_if(classes().begin(), classes().end(), [name](const auto& entry) {
        return equalInAnyCase(entry.first, name);
    });
    return found == classes().end() ? nullptr : &found->second;
}

std::optional<ValueType> declaredType(std::string_view typeName) {
    const std::optional<FieldType> type = findFieldType(typeName);
    return type ? std::optional(valueType(*type, nullptr)) : std::nullopt;
}

bool equalInAnyCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                              [](char x, char y) { return lower(x) == lower(y); });
}

} // namespace meshcast::tidy
