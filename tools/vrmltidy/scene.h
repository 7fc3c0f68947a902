#pragma once

#include "tools/vrmltidy/catalogue.h"
#include "tools/vrmltidy/cursor.h"
#include "tools/vrmltidy/edited_text.h"
#include "tools/vrmltidy/reporter.h"
#include "tools/vrmltidy/tidy.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace meshcast::tidy {

/// What the scenes that make one text share: the one that is read, and those put in place in it.
struct Job {
    explicit Job(const Options& jobOptions) : options(jobOptions) {}

    const Options& options;
    EditedText text;
    std::string refusal; ///< Why the scene cannot be repaired; ends the work when it is set.
    std::size_t repairs = 0;
    std::size_t depth = 0; ///< Of the nodes that are open in the text.
    std::size_t deepest = 0;
    std::size_t mayStillRepeat = 0; ///< Bytes that may still be written once more.
    std::size_t inlinedScenes = 0;
    std::size_t inlinedBytes = 0;
    std::vector<std::string> openScenes; ///< The identities of those that stand one in the other.
};

/// Tidies what stands behind the header of one scene, in one pass. It keeps in step with the
/// reader: what the reader would take next is looked for first, and where that is not there the
/// next thing that makes sense. Nodes are kept on a stack of frames, so nesting costs no stack of
/// the machine's.
class SceneTidier {
public:
    /// `body` is what stands behind the header. A scene that is put in place of a node has the
    /// scene of that node for a parent; it may be none or several nodes.
    SceneTidier(Job& job, std::string_view body, std::string path, Reporter& reporter,
                const SceneTidier* parent);

    /// Writes the body to the job's text, or sets its refusal.
    void run();

private:
    /// What the text between two braces belongs to.
    struct Frame {
        enum class Kind : std::uint8_t {
            kTop,
            kGroup,
            kLeaf,
            kClosedLeaf, ///< A leaf that was closed early: nodes stood in it, now beside it.
        };
        Kind kind;
        bool isInFields; ///< No child has been met yet.
        /// The frame whose children stand here: for a closed leaf, that of the group around it.
        std::uint32_t container;
        const ClassInfo* info;
        std::size_t classOffset;
        std::size_t fieldsEnd; ///< Where fields that come too late are put. Both in the text.
    };

    /// What a DEF name stands for at the place that has been reached.
    struct Definition {
        bool isWritten;          ///< In the text; otherwise in something that was dropped.
        const char* source;      ///< The word DEF.
        std::string writtenName; ///< Where it differs from the name.
    };

    struct NameHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view name) const {
            return std::hash<std::string_view>()(name);
        }
    };

    /// A node's beginning: DEF or, without that, the class.
    struct Beginning {
        const char* source;
        std::size_t offset;      ///< In the text.
        std::size_t classOffset; ///< In the text.
        std::string name;        ///< Given by DEF.
        std::string writtenName; ///< As Definition has it.
    };

    // scene.cpp: what stands next.
    void step();
    void stepInLeaf();
    void stepInGroup();
    void closingBrace();
    void openingBrace();
    void endOfPart();
    void finish();
    void stray();

    // nodes.cpp: nodes.
    void node(Beginning beginning, std::string_view className);
    const ClassInfo* declaredClass(std::string_view className);
    void open(const ClassInfo& info, const Beginning& beginning);
    void close();
    void closeLeafEarly();
    void dropNode(const Beginning& beginning, std::string_view className);
    void dropChild(std::string_view part);
    void null();
    void addChild(std::size_t begin);

    // names.cpp: DEF and USE.
    Beginning beginHere() const;
    StringToken nameAt(const Cursor& place, bool isDefinition);
    void define();
    void writeName(Beginning& beginning, const StringToken& name, bool mayUnquote);
    void mendDefinition(Beginning beginning, const StringToken& name);
    std::string_view classBehindWords(Cursor place) const;
    void use();
    bool restore(std::string_view use, std::string_view name, const char* definition);
    std::string nameToWrite(const std::string& name) const;
    bool isTaken(std::string_view name) const;

    // inlines.cpp
    void replaceInline(const Frame& frame);

    // scene_fields.cpp: fields of the node at hand.
    bool field(const FieldInfo& known);
    void lateField(const FieldInfo& known);
    void unknownField(std::string_view word);
    void skipValue(bool mayBeNode);
    bool passDeclaration(ClassInfo* declared);

    Frame& top() { return frames_.back(); }
    Frame& container() { return frames_[top().container]; }
    bool isAtTop() { return container().kind == Frame::Kind::kTop; }
    bool isBraceBehind(std::string_view word) const;
    /// What stands between a place and the cursor.
    std::string_view since(const char* begin) const {
        return {begin, static_cast<std::size_t>(cursor_.at - begin)};
    }

    Job& job_;
    EditedText& text_;
    Reporter& reporter_;
    const Cursor whole_; ///< At the body's beginning.
    std::string path_;
    const SceneTidier* parent_;
    Cursor cursor_;
    bool isFinished_ = false;
    std::vector<Frame> frames_;
    /// Texts that wait until one inside them, a definition, has been written, and the frames that
    /// are theirs.
    struct Part {
        Cursor cursor;
        std::size_t frames;
    };
    std::vector<Part> parts_;
    std::unordered_map<std::string, Definition, NameHash, std::equal_to<>> names_;
    std::function<void(std::string_view, const char*)> onDroppedDefinition_;
    /// Classes whose fields open nodes have declared, one inside the other.
    std::vector<std::unique_ptr<ClassInfo>> declared_;
    std::optional<bool> bracesMatch_;
    std::function<bool()> bracesMatchCheck_;

    bool hasBracedNames_ = false;
    std::string inlineName_; ///< Of the inline node at hand.
    std::size_t roots_ = 0;
    const char* secondRoot_ = nullptr;
    std::size_t rootsBegin_ = 0;
    std::size_t rootsEnd_ = 0;
};

} // namespace meshcast::tidy
