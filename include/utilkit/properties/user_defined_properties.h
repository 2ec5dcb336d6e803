// VCUUserDefinedProperties: extra properties that users describe in XML.
//
// A host lets its users add their own properties to an object. The users
// write a definition, one "Property" element per property inside a
// "Properties" root:
//
//   <Properties>
//     <Property name="Operator" mandatory="true" description="Who ran it"/>
//     <Property name="Runs" type="long" min="1" max="99"/>
//     <Property name="Unit" type="enum" enumopts="mm,cm,inch" help="Length unit|of the part"/>
//   </Properties>
//
// and the class turns it into typed, range-checked properties of an
// R5PropertySet, checks that mandatory ones have values, and copies values.
//
//   VCUUserDefinedProperties user;
//   if (!user.SetPropDef(definitionText)) { /* error stack: why */ }
//   R5PropertySet& props = hostObject.Properties();
//   VCStringArray added;                       // kept by the host between calls
//   user.UpdateUserDefinedPropsInSet(&props, added);
//   ...
//   if (!user.ValidateMandatoryInSet(&props)) { /* -656169 names the property */ }
//
// Attributes of "Property": "name" (required), "type" ("string" by
// default; "long", "huge", "float", "double", "enum", "boolean" in any
// case), "mandatory" ("true" in any case; anything else is false), "min",
// "max" (numbers), "minallowequal", "maxallowequal" (booleans as
// VFAscToBoolean reads them), "enumopts" (the entries, separated by ","),
// "description" and "help" ("|" stands for a line break). Other children
// and attributes are ignored. Strings are created multi-line; numbers
// start at 0, booleans at false, and numbers are left not defined.
//
// Choices of this library:
// - Bounds default to the whole type: for "long" and "huge" the type's
//   limits, for "float" and "double" -infinity and +infinity. A bound is
//   allowed (the value may equal it) unless its allow-equal attribute is
//   false. "nan" is not a valid "min" or "max".
// - "long" and "huge" bounds that are integers are taken exactly; other
//   numbers are rounded half away from zero (1.5 gives 2, -1.5 gives -2).
//   A bound beyond the type is taken as the type's limit; a "float" bound
//   beyond the float range becomes an infinity.
// - "enumopts" is split at ","; empty pieces are left out (pieces are not
//   trimmed). No piece at all, or the same piece twice, is -656166. The
//   enumeration starts with no entry chosen (not defined); -656167 is not used.
// - A later "Property" with the name of an earlier one replaces it in its
//   place; an empty "name" counts as a missing one.
// - The text form of DecodeUserPropDef takes an empty (or all white space)
//   text as a definition without properties: the set is emptied and the
//   decode succeeds. The node form also accepts a document node, whose
//   root element is then decoded.
// - EncodeUserPropDef writes the human-readable layout of the XML helper
//   without its leading line feed. Every "Property" gets "name", "type"
//   and "mandatory" ("true" or "false"); bounds are written only when they
//   are not the type's default, each with its allow-equal flag ("True" or
//   "False"); then "enumopts", and "description" and "help" when not empty.
//   Decoding the text gives a set with the same definitions
//   (R5PropertySet::HasSameDefinitions) for any set that a decode made.
//   What a definition cannot say is lost: values, the defined and
//   multi-line flags, host-derived types (left out), entries containing ","
//   and help texts containing "|", control characters (dropped), and
//   tabs and line feeds in a description (read back as blanks).
//
// Errors go to the error stack at "VCUUserDefinedProperties::<member>"
// with the codes that each member names; no member throws.
//
// Ownership: the object owns its record: the kept definition and its own
// property set. Sets passed in belong to the caller; the object never keeps them.
#pragma once

#include <utilkit/base/export.h>
#include <utilkit/base/vc_string.h>
#include <utilkit/base/vc_string_array.h>
#include <utilkit/properties/r5_property_set.h>
#include <utilkit/xml/dom_node.h>

class UTILKIT_API VCUUserDefinedProperties {
 public:
  // An object with no properties and an empty kept definition.
  VCUUserDefinedProperties() = default;
  VCUUserDefinedProperties(const VCUUserDefinedProperties&) = delete;
  VCUUserDefinedProperties& operator=(const VCUUserDefinedProperties&) = delete;

  // Parses `text` and decodes its root element into `set` (emptied first).
  // False with -656161 (flag 1) on top of the parser's -655761 when the
  // text is not XML, and as the node form otherwise.
  static bool DecodeUserPropDef(const VCString& text, R5PropertySet& set);
  // Decodes the "Properties" element `root` into `set` (emptied first).
  // On failure -656161 "Syntax error in user defined property value. " is
  // pushed, with flag 0 for a null root or one of another name, and with
  // flag 1 on top of the specific record otherwise: -655766 (no "name", or
  // no "enumopts" for an enumeration), -656162 to -656165 (a bound or
  // allow-equal flag that does not read), -656166 (no or a repeated entry),
  // -656168 + type in lower case (unknown type), or none when an empty name
  // or lack of memory ends it. The properties decoded before the failure
  // stay in `set`.
  static bool DecodeUserPropDef(const DOM_Node& root, R5PropertySet& set);
  // The definition text of `set` (see the header); "" when the XML
  // platform is not available or memory runs out.
  static VCString EncodeUserPropDef(const R5PropertySet& set);

  // Decodes the definition into the object's own set and keeps its
  // re-encoded text. On failure (errors as DecodeUserPropDef) the kept
  // text and the set are emptied.
  bool SetPropDef(const VCString& text);
  bool SetPropDef(const DOM_Node& root);
  // The kept definition text: EncodeUserPropDef of the decoded set.
  const VCString& GetPropDef() const;
  // The names of the defined properties, in definition order.
  VCStringArray GetPropertyNames() const;
  // The decoded properties (their initial values and definitions).
  const R5PropertySet& GetPropertySet() const;

  // True when every defined property that is mandatory in `set` is defined
  // there with a value whose text is not empty. Stops at the first that is
  // not, or that `set` lacks, with -656169 + name. `set` must not be null.
  bool ValidateMandatoryInSet(R5PropertySet* set) const;
  // Brings the user-defined properties of `set` in line with the
  // definition. `names` lists the user-defined properties that `set` holds
  // (empty the first time) and receives the new list. Properties named in
  // `names` that the definition no longer has are removed. Each defined
  // property is then put into `set` as defined (replacing a property of
  // that name in its place, or appended); a value that the old property of
  // the same type held is kept when the new range or entries admit it.
  // False when memory runs out (`set` may then be partly updated and
  // `names` is unchanged). `set` must not be null.
  bool UpdateUserDefinedPropsInSet(R5PropertySet* set, VCStringArray& names) const;
  // Gives each property of `set` that the definition has the definition's
  // description and help text; values and other properties are untouched.
  // `set` must not be null.
  void UpdateDescriptions(R5PropertySet* set) const;

  // Copies the value of `source` into `target`, which is then defined as
  // `source` is: an undefined source marks `target` not defined and leaves
  // its value. False with -656170 when the types differ, with -656171 + the
  // type number for a type other than the built-in ones, and false without
  // a record when `target`'s range or entries refuse the value (`target`
  // unchanged). Neither pointer may be null.
  static bool CopyPropertyValue(const R5Property* source, R5Property* target);

 private:
  // The state: the kept definition and the set it was decoded into.
  struct Record {
    VCString definition;
    R5PropertySet set;
  };

  // Keeps the re-encoded definition after a successful decode, or empties the state.
  bool KeepDecoded(bool decoded);

  Record m_record;
};
