#include "fuzz/scene_text.h"

#include <algorithm>
#include <utility>

namespace meshcast::fuzz {

SceneText::SceneText(std::string text) : text_(std::move(text)) {
    findTokens();
    findStructure();
}

void SceneText::findTokens() {
    constexpr std::string_view kBlank = " \t\r\n";
    constexpr std::string_view kSingle = "{}[](),|~";
    constexpr std::string_view kEndOfWord = " \t\r\n{}[](),|~\"#";
    const auto orEnd = [this](std::size_t place) { return std::min(place, text_.size()); };
    for (std::size_t i = 0; i < text_.size();) {
        const char c = text_[i];
        std::size_t end = i + 1;
        if (c == '#') {
            i = orEnd(text_.find('\n', i));
            continue;
        }
        if (kBlank.find(c) != std::string_view::npos) {
            ++i;
            continue;
        }
        if (c == '"') {
            while (end < text_.size() && text_[end] != '"') {
                end += text_[end] == '\\' ? 2 : 1;
            }
            end = orEnd(end + 1);
        } else if (kSingle.find(c) == std::string_view::npos) {
            end = orEnd(text_.find_first_of(kEndOfWord, end));
        }
        tokens_.push_back({i, end});
        i = end;
    }
}

void SceneText::findStructure() {
    const auto is = [this](std::size_t token, std::string_view word) {
        return token < tokens_.size() && at(tokens_[token]) == word; // Token -1 does not exist.
    };
    constexpr std::string_view kNumberStart = "0123456789+-.";
    std::vector<std::size_t> open;
    std::size_t listStart = 0;
    for (std::size_t i = 0; i < tokens_.size(); ++i) {
        const Stretch token = tokens_[i];
        const char c = text_[token.begin];
        if (c == '{' && i > 0) {
            Node node{{tokens_[i - 1].begin, text_.size()},
                      {token.end, text_.size()},
                      findClass(at(tokens_[i - 1])),
                      {}};
            if (is(i - 3, "DEF")) {
                node.all.begin = tokens_[i - 3].begin;
                definedNames_.push_back(tokens_[i - 2]);
            }
            if (!open.empty()) {
                nodes_[open.back()].children.push_back(nodes_.size());
            }
            open.push_back(nodes_.size());
            nodes_.push_back(std::move(node));
        } else if (c == '}' && !open.empty()) {
            nodes_[open.back()].body.end = token.begin;
            nodes_[open.back()].all.end = token.end;
            open.pop_back();
        } else if (c == '[') {
            listStart = token.end;
        } else if (c == ']' && listStart != 0) {
            lists_.push_back({std::exchange(listStart, 0), token.begin});
        } else if (kNumberStart.find(c) != std::string_view::npos) {
            numbers_.push_back(token);
        }
    }
}

std::vector<Stretch> SceneText::tokensOf(Stretch stretch) const {
    const auto before = [](Stretch token, std::size_t place) { return token.begin < place; };
    return {std::lower_bound(tokens_.begin(), tokens_.end(), stretch.begin, before),
            std::lower_bound(tokens_.begin(), tokens_.end(), stretch.end, before)};
}

Stretch SceneText::findField(const Node& node, std::string_view name) const {
    Stretch found{node.body.begin, node.body.begin};
    std::size_t child = 0;
    std::size_t skipTo = 0;
    bool inside = false;
    for (const Stretch token : tokensOf(node.body)) {
        const bool isChild =
            child < node.children.size() && token.begin == nodes_[node.children[child]].all.begin;
        if (token.begin < skipTo) {
            continue;
        }
        const bool endsValue = isChild || at(token) == "USE" ||
                               (node.class_ != nullptr && node.class_->find(at(token)) != nullptr);
        if (inside && endsValue) {
            return found;
        }
        if (isChild) {
            skipTo = nodes_[node.children[child++]].all.end;
        } else if (inside) {
            found.end = token.end;
        } else if (at(token) == name) {
            inside = true;
            found = token;
        }
    }
    return found;
}

namespace {

using Node = SceneText::Node;

std::string replaced(const SceneText& scene, Stretch stretch, std::string_view by) {
    return std::string(scene.text()).replace(stretch.begin, stretch.size(), by);
}

/// Replaces two ranges. The new texts must not be views of the scene.
std::string replacedBoth(const SceneText& scene, Stretch a, std::string_view byA, Stretch b,
                         std::string_view byB) {
    std::string text = scene.text();
    if (a.begin < b.begin) {
        std::swap(a, b);
        std::swap(byA, byB);
    }
    if (a.begin < b.end) {
        return text; // One contains the other.
    }
    return text.replace(a.begin, a.size(), byA).replace(b.begin, b.size(), byB);
}

/// A position where a child may be inserted; the end of the scene if there is no group.
Stretch childPlace(const SceneText& scene, Random& random) {
    std::vector<const Node*> groups;
    for (const Node& node : scene.nodes()) {
        if (node.class_ != nullptr && node.class_->isGroup) {
            groups.push_back(&node);
        }
    }
    if (groups.empty()) {
        return {scene.text().size(), scene.text().size()};
    }
    const Node& group = *random.oneOf(groups);
    const std::size_t place = random.below(group.children.size() + 1);
    const std::size_t at = place == group.children.size()
                               ? group.body.end
                               : scene.nodes()[group.children[place]].all.begin;
    return {at, at};
}

std::string insertChild(const SceneText& scene, std::string_view child, Random& random) {
    return replaced(scene, childPlace(scene, random), std::string(" ").append(child).append(" "));
}

// ---- mutations: each returns a new text, or the old one if it is not applicable

std::string insertNodes(const SceneText& scene, Random& random) {
    std::string nodes = randomNode(random);
    for (std::size_t count = random.below(4); count > 0; --count) {
        nodes += " " + randomNode(random);
    }
    return insertChild(scene, nodes, random);
}

std::string repeatNode(const SceneText& scene, Random& random) {
    return scene.nodes().empty()
               ? scene.text()
               : insertChild(scene, scene.at(random.oneOf(scene.nodes()).all), random);
}

std::string removeNode(const SceneText& scene, Random& random) {
    return scene.nodes().empty() ? scene.text()
                                 : replaced(scene, random.oneOf(scene.nodes()).all, "");
}

std::string swapNodes(const SceneText& scene, Random& random) {
    if (scene.nodes().empty()) {
        return scene.text();
    }
    const Stretch a = random.oneOf(scene.nodes()).all;
    const Stretch b = random.oneOf(scene.nodes()).all;
    return replacedBoth(scene, a, scene.at(b), b, scene.at(a));
}

std::string wrapNode(const SceneText& scene, Random& random) {
    if (scene.nodes().empty()) {
        return scene.text();
    }
    const Stretch node = random.oneOf(scene.nodes()).all;
    std::string_view group = "Group";
    for (std::size_t tries = 0; tries < 8; ++tries) {
        const CatalogueClass& candidate = random.oneOf(catalogue());
        group = candidate.isGroup ? candidate.name : group;
    }
    const std::size_t levels = random.oneIn(20) ? 300 : 1;
    std::string text(scene.at(node));
    for (std::size_t i = 0; i < levels; ++i) {
        text = std::string(group).append(" { ").append(text).append(" }");
    }
    return replaced(scene, node, text);
}

std::string defineNode(const SceneText& scene, Random& random) {
    if (scene.nodes().empty()) {
        return scene.text();
    }
    const std::size_t begin = random.oneOf(scene.nodes()).all.begin;
    return replaced(scene, {begin, begin},
                    "DEF " + std::string(1, static_cast<char>('a' + random.below(4))) + " ");
}

std::string useNode(const SceneText& scene, Random& random) {
    if (scene.definedNames().empty()) {
        return defineNode(scene, random);
    }
    const std::string_view name = scene.at(random.oneOf(scene.definedNames()));
    return insertChild(scene, std::string("USE ").append(name), random);
}

std::string setField(const SceneText& scene, Random& random) {
    if (scene.nodes().empty()) {
        return scene.text();
    }
    const Node& node = random.oneOf(scene.nodes());
    if (node.class_ == nullptr || node.class_->fields.empty()) {
        return scene.text();
    }
    const CatalogueField& field = random.oneOf(node.class_->fields);
    return replaced(scene, scene.findField(node, field.name),
                    " " + field.name + " " + field.randomValue(random) + " ");
}

std::string changeNumber(const SceneText& scene, Random& random) {
    return scene.numbers().empty()
               ? scene.text()
               : replaced(scene, random.oneOf(scene.numbers()),
                          random.oneIn(2) ? randomInteger(random) : randomReal(random));
}

std::string changeList(const SceneText& scene, Random& random) {
    if (scene.lists().empty()) {
        return scene.text();
    }
    const Stretch list = random.oneOf(scene.lists());
    const std::vector<Stretch> tokens = scene.tokensOf(list);
    if (tokens.empty()) {
        return replaced(scene, list, " " + randomInteger(random) + " ");
    }
    // Removes or repeats a part of the list.
    std::size_t first = random.below(tokens.size());
    std::size_t last = random.below(tokens.size());
    if (last < first) {
        std::swap(first, last);
    }
    const Stretch part{tokens[first].begin, tokens[last].end};
    return random.oneIn(2)
               ? replaced(scene, part, "")
               : replaced(scene, {part.end, part.end}, std::string(", ").append(scene.at(part)));
}

std::string changeToken(const SceneText& scene, Random& random) {
    if (scene.tokens().empty()) {
        return scene.text();
    }
    const std::string_view other = scene.at(random.oneOf(scene.tokens()));
    return replaced(scene, random.oneOf(scene.tokens()),
                    random.oneIn(2) ? std::string_view() : std::string_view(other));
}

using Mutation = std::string (*)(const SceneText&, Random&);

/// Mutations that keep scenes readable occur more often than those that cause read errors.
constexpr Mutation kMutations[] = {
    insertNodes, insertNodes,  insertNodes,  setField,   setField,   setField,
    setField,    repeatNode,   removeNode,   swapNodes,  wrapNode,   defineNode,
    useNode,     changeNumber, changeNumber, changeList, changeList, changeToken};

constexpr std::string_view kEmptyScene = "#VRML V1.0 ascii\nSeparator { }\n";

} // namespace

std::string mutatedScene(std::string text, Random& random) {
    if (text.empty()) {
        text = kEmptyScene;
    }
    for (std::size_t count = 1 + random.below(4); count > 0; --count) {
        text = random.oneOf(kMutations)(SceneText(std::move(text)), random);
    }
    return text;
}

std::string crossedScenes(const std::string& text, const std::string& other, Random& random) {
    const SceneText a(text);
    const SceneText b(other);
    return a.nodes().empty() || b.nodes().empty()
               ? text
               : replaced(a, random.oneOf(a.nodes()).all, b.at(random.oneOf(b.nodes()).all));
}

} // namespace meshcast::fuzz
