#pragma once

#include "fuzz/catalogue_text.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace meshcast::fuzz {

/// A stretch of a text.
struct Stretch {
    std::size_t begin;
    std::size_t end;

    std::size_t size() const { return end - begin; }
};

/// A scene's text with the structure that shows without reading it as a scene: tokens, nodes and
/// lists. Any text has one; what makes no sense is in no node and no list.
class SceneText {
public:
    explicit SceneText(std::string text);

    /// A node with its braces, and the DEF before it if there is one.
    struct Node {
        Stretch all;
        Stretch body;                      ///< What stands between the braces.
        const CatalogueClass* class_;      ///< Null if unknown.
        std::vector<std::size_t> children; ///< Numbers of nodes.
    };

    const std::string& text() const { return text_; }
    std::string_view at(Stretch stretch) const {
        return std::string_view(text_).substr(stretch.begin, stretch.size());
    }

    /// Parents stand before their children.
    const std::vector<Node>& nodes() const { return nodes_; }
    /// What stands between the brackets of each list.
    const std::vector<Stretch>& lists() const { return lists_; }
    const std::vector<Stretch>& numbers() const { return numbers_; }
    const std::vector<Stretch>& tokens() const { return tokens_; }
    /// The names after DEF.
    const std::vector<Stretch>& definedNames() const { return definedNames_; }

    /// The field with its value, where the node's own body sets it; else an empty stretch where it
    /// could stand.
    Stretch findField(const Node& node, std::string_view name) const;
    /// The tokens of a stretch.
    std::vector<Stretch> tokensOf(Stretch stretch) const;

private:
    void findTokens();
    void findStructure();

    std::string text_;
    std::vector<Stretch> tokens_;
    std::vector<Node> nodes_;
    std::vector<Stretch> lists_;
    std::vector<Stretch> numbers_;
    std::vector<Stretch> definedNames_;
};

/// Changes the structure of a scene at random: nodes come, go, repeat, swap, get names and are
/// used, fields get values of their types, numbers and lists change.
std::string mutatedScene(std::string text, Random& random);

/// A scene with one of its nodes replaced by one of another's.
std::string crossedScenes(const std::string& text, const std::string& other, Random& random);

} // namespace meshcast::fuzz
