#pragma once

#include "fuzz/catalogue_text.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace meshcast::fuzz {

/// A range of a text.
struct Stretch {
    std::size_t begin;
    std::size_t end;

    std::size_t size() const { return end - begin; }
};

/// The text of a scene with its rough structure: tokens, nodes and lists. Any text is accepted;
/// parts that are not valid belong to no node or list.
class SceneText {
public:
    explicit SceneText(std::string text);

    /// A node with its braces, and the DEF before it if there is one.
    struct Node {
        Stretch all;
        Stretch body;                      ///< The text between the braces.
        const CatalogueClass* class_;      ///< Null if unknown.
        std::vector<std::size_t> children; ///< Numbers of nodes.
    };

    const std::string& text() const { return text_; }
    std::string_view at(Stretch stretch) const {
        return std::string_view(text_).substr(stretch.begin, stretch.size());
    }

    /// Parents come before their children.
    const std::vector<Node>& nodes() const { return nodes_; }
    /// The text between the brackets of each list.
    const std::vector<Stretch>& lists() const { return lists_; }
    const std::vector<Stretch>& numbers() const { return numbers_; }
    const std::vector<Stretch>& tokens() const { return tokens_; }
    /// The names after DEF.
    const std::vector<Stretch>& definedNames() const { return definedNames_; }

    /// The field with its value, if the body of the node sets it; else an empty range where it can
    /// be inserted.
    Stretch findField(const Node& node, std::string_view name) const;
    /// The tokens of a range.
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

/// Changes the structure of a scene at random: nodes are inserted, removed, repeated, swapped,
/// named and used; fields get values of their types; numbers and lists change.
std::string mutatedScene(std::string text, Random& random);

/// A scene with one of its nodes replaced by a node of another scene.
std::string crossedScenes(const std::string& text, const std::string& other, Random& random);

} // namespace meshcast::fuzz
