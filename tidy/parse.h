#pragma once

#include "tidy/edits.h"
#include "tidy/lexer.h"
#include "tidy/node_class.h"
#include "tidy/report.h"
#include "tidy/skip.h"
#include "tidy/tidy.h"
#include "tidy/value.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace meshcast::tidy {

// The tolerant parser: its data, and one function for each production of the scene language. It
// first tries what the reader would accept next. Only when that fails does it look for the next
// thing that makes sense. Open nodes are kept in a vector, so deep nesting does not use the call
// stack.

/// The current coordinates: how many, and when they were set.
struct Coordinates {
    std::int64_t count = -1; ///< Negative when there are none.
    std::uint64_t since = 0; ///< By Job::clock.
};

/// State shared by all texts of one scene: the file itself and the scenes inlined into it.
struct Job {
    explicit Job(const Options& jobOptions) : options(jobOptions) {}

    const Options& options;
    TextStore store;
    std::string refusal;   ///< Why the scene cannot be repaired. Setting it stops the parser.
    std::size_t depth = 0; ///< The number of open nodes.
    std::size_t deepest = 0;
    std::uint64_t mayStillRepeat = 0; ///< Bytes that repeated definitions may still add.
    std::size_t restoring = 0;        ///< Nesting depth of the definitions being repeated.
    std::size_t inlinesTried = 0;
    std::size_t inlinedScenes = 0;
    std::set<std::string> files; ///< The file names that messages point to.
    std::uint64_t bytesPut = 0;  ///< Bytes inserted for inlined scenes.
    std::vector<std::string>
        openScenes; ///< The identities of the scenes being inlined, from the outermost.
    Coordinates coordinates;
    std::uint64_t clock = 0;    ///< Counts the nodes met so far.
    bool hasOpenPoints = false; ///< Some point set has no number of points.
};

/// What a DEF name stands for at the current position.
struct Definition {
    const char* source = nullptr; ///< The word DEF.
    bool isWritten = false;       ///< False when the definition was dropped.
    std::string writtenName;      ///< The name in the repaired text, if different.
    std::int64_t leavesCount =
        -1; ///< The number of coordinates that it leaves set; negative: none.
    std::int64_t pointsWritten = -1; ///< The number of points written for its point sets that use
                                     ///< coordinates from outside it.
};

/// One text: the scene itself, or one that replaces an inline node of its parent.
struct Source {
    Source(Job& sourceJob, std::string_view wholeFile, std::string_view scene,
           const std::string& filePath, Source* parentSource);

    /// The name to write for `name`. An inlined scene must not reuse the names of the scenes around
    /// it.
    std::string nameToWrite(const std::string& name) const;
    bool isTaken(std::string_view name) const;
    std::uint32_t lineOf(const char* p) {
        return static_cast<std::uint32_t>(lines.lineAt(static_cast<std::size_t>(p - file.data())));
    }

    Job& job;
    std::string_view file;
    std::string_view body; ///< The text after the header.
    std::string path;
    Source* parent;
    LineIndex lines;
    std::map<std::string, Definition, std::less<>> names;
    std::uint64_t mayStillCompare; ///< Bytes that may still be spent on looking up words that turn
                                   ///< out to be no names.
    bool hasBracedNames = false;
    std::function<bool()> bracesMatch; ///< Whether the braces of the body match; computed once.
    OnDefinition onDropped;            ///< Records definitions in dropped text.
};

/// A node whose closing brace has not been reached.
struct OpenNode {
    enum class Kind : std::uint8_t {
        kTop,
        kGroup,
        kLeaf,
        kClosedLeaf, ///< A leaf that was closed early because nodes were in it. They are now its
                     ///< siblings.
    };
    Kind kind;
    bool isInFields = true;    ///< No child has been met yet.
    std::size_t container = 0; ///< The index in `open` of the node that gets the children: for a
                               ///< closed leaf, the group around it.
    const NodeClass* info = nullptr;
    const char* begin = nullptr; ///< The word DEF, or else the class.
    const char* classBegin = nullptr;
    std::string name;            ///< Given by DEF.
    EditList::Mark fieldsEnd;    ///< Where fields found after the children are moved to.
    std::size_t editsBefore = 0; ///< The number of edits when the class was reached.
    // Coordinates and points.
    Coordinates before;      ///< The coordinates when the node began.
    std::uint64_t began = 0; ///< By Job::clock.
    std::int64_t children = 0;
    std::int64_t whichChild = -1;
    bool showsFirstChild = false;    ///< Shows the first child only: a level of detail.
    std::int64_t outsidePoints = -1; ///< As Definition::pointsWritten.
    std::uint64_t outsideSince =
        0; ///< When the oldest of the coordinates used for these points was set.
};

/// Values of the current leaf that are needed when it ends.
struct LeafFields {
    std::string inlineName;
    std::int64_t pointCount = 1; ///< Of Coordinate3, whose default is one point.
    std::int32_t startIndex = 0;
    bool hasNumPoints = false; ///< And not -1.
};

/// The state of parsing one text, or a part of it that is repeated.
struct Parse {
    Parse(Source& parsedSource, std::string_view text, std::string_view editedText);

    OpenNode& top() { return open.back(); }
    OpenNode& container() { return open[top().container]; }
    bool isAtTop() { return container().kind == OpenNode::Kind::kTop; }
    const NodeClass& owner() {
        return *(top().kind == OpenNode::Kind::kLeaf ? top() : container()).info;
    }
    bool isBraceAfter(const char* p) { return lexer.at(lexer.skipSpace(p)) == '{'; }

    Source& source;
    Job& job;
    std::string_view edited; ///< The text that the offsets of edits refer to.
    Lexer lexer;
    EditList edits;
    const char* at;
    std::vector<OpenNode> open;
    std::vector<std::unique_ptr<NodeClass>>
        declared; ///< The classes declared by open nodes, from the outermost.
    LeafFields leaf;
    bool isPart = false; ///< Parses a repeated definition, not the whole text.
    bool isFinished = false;
    std::size_t roots = 0;
    EditList::Mark rootsBegin;
    EditList::Mark rootsEnd;
    const char* secondRoot = nullptr;
};

/// The beginning of a node.
struct Beginning {
    const char* begin;       ///< The word DEF, or else the class.
    std::size_t editsBefore; ///< The number of edits when it was reached.
    EditList::Mark mark;
    std::string name; ///< Given by DEF.
    std::string writtenName;
};

/// Removes and returns the edits at or after `at`.
std::vector<Edit> takeEditsFrom(Parse& parse, const char* at);

/// Parses the text. Leaves the edits in `parse.edits`, or a refusal in the job.
void parseText(Parse& parse);

// body.cpp: what comes next in a body.
void parseStep(Parse& parse);
void parseOpeningBrace(Parse& parse);
void parseClosingBrace(Parse& parse);
void parseStray(Parse& parse);
void parseEnd(Parse& parse);

// node.cpp: nodes.
void parseNode(Parse& parse, const Beginning& beginning, std::string_view className);
void openNode(Parse& parse, const NodeClass& info, const Beginning& beginning,
              const char* classBegin);
void closeNode(Parse& parse);
void closeLeafEarly(Parse& parse);
void dropNode(Parse& parse, const Beginning& beginning, std::string_view className);
/// Drops a child. Where children are chosen by number, an empty group takes its place so that the
/// others keep their numbers.
void dropChild(Parse& parse, const char* first, const std::string& message);
void parseNull(Parse& parse);
void addChild(Parse& parse, const EditList::Mark& begin);

// stand_in.cpp: nodes of unknown classes that can still be understood.
const NodeClass* declaredClass(Parse& parse, std::string_view className);
struct StandIn {
    const NodeClass* info = nullptr;
    const char* body =
        nullptr; ///< The position after a declaration of fields that is dropped; else null.
};
StandIn standIn(Parse& parse, std::string_view className);
bool parseRotationXYZ(Parse& parse, const Beginning& beginning, std::string_view className);
/// The end of a declaration of fields that the reader accepts, `p` being the word `fields`; or
/// null. With a class given, adds the fields to it; then all types must be known.
const char* endOfDeclaration(Lexer& lexer, const char* p, NodeClass* declared);

// definition.cpp: DEF and USE.
Beginning beginHere(Parse& parse);
void parseDef(Parse& parse);
void parseUse(Parse& parse);

// field.cpp: fields of the current node.
bool parseField(Parse& parse, const Field& known);
void parseLateField(Parse& parse, const Field& known);
void parseUnknownField(Parse& parse, std::string_view word);

// points.cpp: the current coordinates, and point sets without a number of points.
/// Records the value of a field that later repairs depend on. `value` is the repaired text, `count`
/// the number of values.
void noteField(Parse& parse, const Field& field, std::string_view value, std::size_t count);
/// True when the value of numPoints means "all points".
bool leavesPointsOpen(const Field& field, const NodeClass& owner, std::string_view value);
void openScope(Parse& parse, OpenNode& node);
void closeScope(Parse& parse, OpenNode& node, OpenNode& parent);
void useScope(Parse& parse, const Definition& definition);

// inline.cpp
/// Replaces an inline node by the scene that it names, or keeps the node and reports why.
void replaceInline(Parse& parse, const OpenNode& node);
/// The new value of a field that names an image relative to an inlined scene: the same file
/// relative to the outermost scene. Empty when the value can stay.
std::string imageNameFromOutside(const Source& source, std::string_view value);

} // namespace meshcast::tidy
