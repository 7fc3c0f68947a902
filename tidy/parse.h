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

// The tolerant parser: records, and one function for each production of the scene language. It
// keeps in step with the reader: what the reader would take next is looked for first, and where
// that is not there, the next thing that makes sense. Open nodes are kept on a stack of records, so
// nesting costs no stack of the machine's.

/// The coordinates in force: how many, and since when.
struct Coordinates {
    std::int64_t count = -1; ///< Negative when there are none.
    std::uint64_t since = 0; ///< On the job's clock.
};

/// What the texts that make one scene share: the one that is read, and those put in place in it.
struct Job {
    explicit Job(const Options& jobOptions) : options(jobOptions) {}

    const Options& options;
    TextStore store;
    std::string refusal;   ///< Why the scene cannot be repaired; ends the work when it is set.
    std::size_t depth = 0; ///< Of the nodes that are open.
    std::size_t deepest = 0;
    std::uint64_t mayStillRepeat = 0; ///< Bytes that may still be written once more.
    std::size_t restoring = 0;        ///< Definitions that are being restored, one in the other.
    std::size_t inlinesTried = 0;
    std::size_t inlinedScenes = 0;
    std::set<std::string> files;         ///< The names that messages bear.
    std::uint64_t bytesPut = 0;          ///< In the places of inlines.
    std::vector<std::string> openScenes; ///< The identities of those that stand one in the other.
    Coordinates coordinates;
    std::uint64_t clock = 0;    ///< Counts nodes that begin.
    bool hasOpenPoints = false; ///< There is a point set without a number of points.
};

/// What a DEF name stands for at the place that has been reached.
struct Definition {
    const char* source = nullptr;    ///< The word DEF.
    bool isWritten = false;          ///< Otherwise it is in something that was dropped.
    std::string writtenName;         ///< Where it differs from the name.
    std::int64_t leavesCount = -1;   ///< Coordinates that are in force after it; negative: none.
    std::int64_t pointsWritten = -1; ///< Points of coordinates from outside, as they were written.
};

/// One text: the scene that is read, or one that is put in place of a node of its parent.
struct Source {
    Source(Job& sourceJob, std::string_view wholeFile, std::string_view scene,
           const std::string& filePath, Source* parentSource);

    /// What a name is called in the text, if it cannot stay as it is: in a scene that is put in
    /// place, the names of the scenes around it are taken.
    std::string nameToWrite(const std::string& name) const;
    bool isTaken(std::string_view name) const;
    std::uint32_t lineOf(const char* p) {
        return static_cast<std::uint32_t>(lines.lineAt(static_cast<std::size_t>(p - file.data())));
    }

    Job& job;
    std::string_view file;
    std::string_view body; ///< What follows the header.
    std::string path;
    Source* parent;
    LineIndex lines;
    std::map<std::string, Definition, std::less<>> names;
    std::uint64_t mayStillCompare; ///< Bytes of words that may be names but turn out not to be.
    bool hasBracedNames = false;
    std::function<bool()> bracesMatch; ///< Of the body; looked at once.
    OnDefinition onDropped;            ///< Notes definitions in what is dropped.
};

/// A node whose closing brace has not been reached.
struct OpenNode {
    enum class Kind : std::uint8_t {
        kTop,
        kGroup,
        kLeaf,
        kClosedLeaf, ///< A leaf that was closed early: nodes stood in it, now beside it.
    };
    Kind kind;
    bool isInFields = true;    ///< No child has been met yet.
    std::size_t container = 0; ///< The node whose children stand here: that around a closed leaf.
    const NodeClass* info = nullptr;
    const char* begin = nullptr; ///< DEF or, without that, the class.
    const char* classBegin = nullptr;
    std::string name;            ///< Given by DEF.
    EditList::Mark fieldsEnd;    ///< Where fields that come too late are put.
    std::size_t editsBefore = 0; ///< Edits when the class was met.
    // Coordinates and points.
    Coordinates before;      ///< In force when the node began.
    std::uint64_t began = 0; ///< On the job's clock.
    std::int64_t children = 0;
    std::int64_t whichChild = -1;
    bool showsFirstChild = false;    ///< And no other: a level of detail.
    std::int64_t outsidePoints = -1; ///< As Definition::pointsWritten.
    std::uint64_t outsideSince = 0;  ///< Of the oldest of the coordinates of these points.
};

/// The fields of the leaf at hand that matter beyond themselves.
struct LeafFields {
    std::string inlineName;
    std::int64_t pointCount = 1; ///< Of Coordinate3, whose default is one point.
    std::int32_t startIndex = 0;
    bool hasNumPoints = false; ///< And not -1.
};

/// The way through one text, or through a part of it that is written once more.
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
    std::string_view edited; ///< What the offsets of edits count in.
    Lexer lexer;
    EditList edits;
    const char* at;
    std::vector<OpenNode> open;
    std::vector<std::unique_ptr<NodeClass>> declared; ///< By open nodes, one inside the other.
    LeafFields leaf;
    bool isPart = false; ///< A definition that is written once more, not the whole text.
    bool isFinished = false;
    std::size_t roots = 0;
    EditList::Mark rootsBegin;
    EditList::Mark rootsEnd;
    const char* secondRoot = nullptr;
};

/// A node's beginning.
struct Beginning {
    const char* begin;       ///< DEF or, without that, the class.
    std::size_t editsBefore; ///< Edits when it was met.
    EditList::Mark mark;
    std::string name; ///< Given by DEF.
    std::string writtenName;
};

/// Takes back the edits of the text from a place on.
std::vector<Edit> takeEditsFrom(Parse& parse, const char* at);

/// Goes through the text, and leaves its edits in `parse.edits` or a refusal in the job.
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
/// Leaves a child out. Where children are chosen by their number, something keeps its place.
void dropChild(Parse& parse, const char* first, const std::string& message);
void parseNull(Parse& parse);
void addChild(Parse& parse, const EditList::Mark& begin);

// stand_in.cpp: nodes of classes that are not of the catalogue, but say what they are like.
const NodeClass* declaredClass(Parse& parse, std::string_view className);
struct StandIn {
    const NodeClass* info = nullptr;
    const char* body = nullptr; ///< After a declaration of fields, which is dropped; else null.
};
StandIn standIn(Parse& parse, std::string_view className);
bool parseRotationXYZ(Parse& parse, const Beginning& beginning, std::string_view className);
/// The end of a declaration of fields, from the word on, as the reader takes it, or null. What is
/// declared is added to a class, if there is one; then the types have to be known.
const char* endOfDeclaration(Lexer& lexer, const char* p, NodeClass* declared);

// definition.cpp: DEF and USE.
Beginning beginHere(Parse& parse);
void parseDef(Parse& parse);
void parseUse(Parse& parse);

// field.cpp: fields of the node at hand.
bool parseField(Parse& parse, const Field& known);
void parseLateField(Parse& parse, const Field& known);
void parseUnknownField(Parse& parse, std::string_view word);

// points.cpp: coordinates in force, and point sets without a number of points.
/// Remembers what is read from a field besides its place: the text of its value, mended, and the
/// number of values.
void noteField(Parse& parse, const Field& field, std::string_view value, std::size_t count);
/// True for a number of points that stands for all that there are.
bool leavesPointsOpen(const Field& field, const NodeClass& owner, std::string_view value);
void openScope(Parse& parse, OpenNode& node);
void closeScope(Parse& parse, OpenNode& node, OpenNode& parent);
void useScope(Parse& parse, const Definition& definition);

// inline.cpp
/// Puts the scene that an inline node names in its place, or leaves the node as it is and says why.
void replaceInline(Parse& parse, const OpenNode& node);
/// The value of a field that names an image beside an inlined scene, as it has to be in the folder
/// of the scene around all; empty when it can stay.
std::string imageNameFromOutside(const Source& source, std::string_view value);

} // namespace meshcast::tidy
