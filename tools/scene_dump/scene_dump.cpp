#include "tools/scene_dump/scene_dump.h"

#include "vrml/group.h"

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <vector>

// The tree is walked twice in the same order. The first walk finds nodes whose DEF name has been
// redefined when a USE refers to them; the second walk writes.

namespace meshcast {

namespace {

class SceneDump {
public:
    explicit SceneDump(std::ostream& out) : out_(out) {}

    void write(QvNode& root) {
        goThrough(root);
        seen_.clear();
        newest_.clear();
        isWriting_ = true;
        goThrough(root);
    }

private:
    struct OpenGroup {
        const QvGroup* group;
        std::size_t nextChild;
    };

    /// Keeps the open groups on an explicit stack, because nesting may be too deep for recursion.
    void goThrough(QvNode& root) {
        enter(root);
        while (!open_.empty()) {
            const auto [group, child] = open_.back();
            if (child < group->getChildList().size()) {
                ++open_.back().nextChild;
                enter(*group->getChildList()[child]);
            } else {
                open_.pop_back();
                line("}");
            }
        }
    }

    /// Writes a node without its children. Leaves a group open.
    void enter(QvNode& node) {
        const bool isFirst = seen_.insert(&node).second;
        const std::string name = nameOf(node);
        if (!isFirst) {
            if (newest_[name] != &node) {
                renamed_.emplace(&node, "");
            }
            line("USE " + name);
            return;
        }
        if (!name.empty()) {
            names_.insert(name);
            newest_[name] = &node;
        }
        const auto* const unknown = dynamic_cast<const QvUnknownNode*>(&node);
        const FieldTable& table = unknown ? unknown->declaredFields() : node.getFieldTable();
        const std::string_view className =
            unknown != nullptr ? unknown->className().view() : table.className();
        line((name.empty() ? "" : "DEF " + name + " ") + std::string(className) + " {");
        open_.push_back({dynamic_cast<const QvGroup*>(&node), 0});
        if (isWriting_) {
            if (unknown != nullptr) {
                declaration(table);
            }
            for (const FieldTable::FieldEntry& entry : table.fields()) {
                field(node, table, entry);
            }
        }
        if (open_.back().group == nullptr) {
            open_.pop_back();
            line("}");
        }
    }

    /// The name that a node is written with.
    std::string nameOf(const QvNode& node) {
        std::string name(node.nodeName().view());
        const auto found = renamed_.find(&node);
        if (!isWriting_ || found == renamed_.end()) {
            return name;
        }
        for (int number = 2; found->second.empty(); ++number) {
            const std::string candidate = name + "_" + std::to_string(number);
            if (names_.insert(candidate).second) {
                found->second = candidate;
            }
        }
        return found->second;
    }

    void declaration(const FieldTable& table) {
        std::string text = "fields [";
        for (const FieldTable::FieldEntry& entry : table.fields()) {
            text.append(" ").append(fieldTypeName(entry.type)).append(" ");
            text.append(entry.name.view()).append(",");
        }
        line(text + " ]");
    }

    void field(QvNode& node, const FieldTable& table, const FieldTable::FieldEntry& entry) {
        const QvField& field = entry.of(node);
        if (table.findField(entry.name) != &entry) {
            return; // Declared twice under the same name: only the first can have a value.
        }
        const std::string name(entry.name.view());
        const std::string value = fieldText(field, entry.words());
        std::string text = name + " " + value;
        if (field.isDefault() && !field.ignored()) {
            text.insert(0, "# ");
            for (std::size_t i = 0; (i = text.find('\n', i)) != std::string::npos; i += 3) {
                text.replace(i, 1, "\n# ");
            }
        } else if (field.isDefault()) {
            // A mark instead of a value does not change the value.
            text = (value.empty() ? "" : text + " ") + name + " ~";
        } else if (field.ignored()) {
            text += " ~";
        }
        line(text);
    }

    void line(const std::string& text) {
        constexpr std::size_t kDeepestIndent = 20;
        if (isWriting_) {
            out_ << std::string(2 * std::min(open_.size(), kDeepestIndent), ' ') << text << '\n';
        }
    }

    std::ostream& out_;
    bool isWriting_ = false;
    std::vector<OpenGroup> open_;
    std::unordered_set<const QvNode*> seen_;
    std::unordered_map<std::string, const QvNode*>
        newest_; ///< The node that a USE of the name finds.
    std::set<std::string> names_;
    std::unordered_map<const QvNode*, std::string> renamed_;
};

} // namespace

void dumpScene(QvNode* root, std::ostream& out) {
    out << "#VRML V1.0 ascii\n";
    if (root != nullptr) {
        SceneDump(out).write(*root);
    }
}

} // namespace meshcast
