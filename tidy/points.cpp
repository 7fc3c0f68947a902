#include "tidy/parse.h"
#include "vrml/number_scan.h"

#include <limits>
#include <string>

// By the language, a point set without a number of points shows all current coordinates, but the
// filter shows none. So the current coordinates are tracked in the same way as by the filter's
// traversal, and the number is written. A definition may hold point sets that use coordinates from
// outside it. Where it is used with other coordinates, the definition is repeated.

namespace meshcast::tidy {

namespace {

/// True when the traversal visits the latest child of a node.
bool showsLatestChild(const OpenNode& node) {
    constexpr std::int64_t kAllChildren = -3;
    if (node.info == nullptr || !node.info->picksChild) {
        return true;
    }
    const std::int64_t index = node.children - 1;
    return node.showsFirstChild ? index == 0
                                : node.whichChild == kAllChildren || node.whichChild == index;
}

/// Writes the number of points at the end of a point set: all current coordinates from its start
/// index on.
void writePoints(Parse& parse, OpenNode& node) {
    const LeafFields& leaf = parse.leaf;
    const Coordinates& inForce = parse.job.coordinates;
    const std::int64_t count = inForce.count - leaf.startIndex;
    if (leaf.hasNumPoints || leaf.startIndex < 0) {
        return;
    }
    parse.job.hasOpenPoints = true;
    if (count <= 0) {
        return;
    }
    parse.edits.insertAt(node.fieldsEnd, " numPoints " + std::to_string(count) + " ",
                         "wrote the number of points, " + std::to_string(count));
    node.outsidePoints = inForce.count;
    node.outsideSince = inForce.since;
}

std::int32_t integerOf(std::string_view text) {
    return scanInteger(std::string(text).c_str()).value;
}

} // namespace

void noteField(Parse& parse, const Field& field, std::string_view value, std::size_t count) {
    const NodeClass& owner = parse.owner();
    LeafFields& leaf = parse.leaf;
    if (owner.isInline && field.name == "name") {
        leaf.inlineName = StringToken{value, value.starts_with('"'), true}.value();
    } else if (owner.setsCoordinates && field.name == "point") {
        leaf.pointCount = static_cast<std::int64_t>(count);
    } else if (owner.drawsPoints && field.name == "startIndex") {
        leaf.startIndex = integerOf(value);
    } else if (owner.drawsPoints && field.name == "numPoints") {
        leaf.hasNumPoints = true;
    } else if (owner.picksChild && field.name == "whichChild") {
        parse.top().whichChild = integerOf(value);
    }
}

bool leavesPointsOpen(const Field& field, const NodeClass& owner, std::string_view value) {
    return owner.drawsPoints && field.name == "numPoints" && integerOf(value) < 0;
}

void openScope(Parse& parse, OpenNode& node) {
    node.before = parse.job.coordinates;
    node.began = ++parse.job.clock;
    node.outsideSince = std::numeric_limits<std::uint64_t>::max();
    node.showsFirstChild = node.info->picksChild && node.info->field("whichChild") == nullptr;
}

void closeScope(Parse& parse, OpenNode& node, OpenNode& parent) {
    Job& job = parse.job;
    if (node.info->setsCoordinates) {
        job.coordinates = {parse.leaf.pointCount, ++job.clock};
    } else if (node.info->drawsPoints) {
        writePoints(parse, node);
    } else if (node.info->keepsItsState) {
        job.coordinates = node.before;
    }
    const auto named =
        node.name.empty() ? parse.source.names.end() : parse.source.names.find(node.name);
    if (named != parse.source.names.end() && named->second.source == node.begin) {
        Definition& definition = named->second;
        definition.leavesCount = job.coordinates.since > node.began ? job.coordinates.count : -1;
        definition.pointsWritten = node.outsideSince < node.began ? node.outsidePoints : -1;
    }
    if (!showsLatestChild(parent)) {
        job.coordinates = node.before;
    }
    if (node.outsideSince < parent.outsideSince) {
        parent.outsideSince = node.outsideSince;
        parent.outsidePoints = node.outsidePoints;
    }
}

void useScope(Parse& parse, const Definition& definition) {
    if (definition.leavesCount >= 0 && showsLatestChild(parse.container())) {
        parse.job.coordinates = {definition.leavesCount, ++parse.job.clock};
    }
}

} // namespace meshcast::tidy
