#pragma once

#include "vrml/field_info.h"

#include <iosfwd>
#include <string>

namespace meshcast {

class QvField;
class QvNode;

/// The value of a field as a scene spells it. `type` must be the field's; `words` are those of its
/// class for SFEnum and SFBitMask, null for a field that a scene declares.
std::string fieldText(const QvField& field, FieldType type, const Enumeration* words);

/// Writes the tree below a node, null for none, as a scene with the values of all fields. Fields
/// that hold their default are comments, so that reading the dump gives the same tree: the same
/// classes, names, values and marks. Only where two nodes got one name and USE asks for the older
/// one is a name changed, by a number at its end.
void dumpScene(QvNode* root, std::ostream& out);

} // namespace meshcast
