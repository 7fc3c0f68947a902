#pragma once

#include "vrml/field_info.h"

#include <iosfwd>
#include <string>

namespace meshcast {

class QvField;
class QvNode;

/// The value of a field as a scene spells it. For SFEnum and SFBitMask, `words` is the enumeration
/// of the field; null for a field that a scene declares.
std::string fieldText(const QvField& field, const Enumeration* words);

/// Writes the tree below a node (which may be null) as a scene with the values of all fields.
/// Fields with their default values are comments, so that reading the dump gives the same tree,
/// with the same classes, names, values and marks. One thing may change: if two nodes have the same
/// name and a USE refers to the older one, a number is appended to a name.
void dumpScene(QvNode* root, std::ostream& out);

} // namespace meshcast
