// VCUTree: the tree processor. Regroups, filters and sorts a host's tree.
//
// The host derives its nodes from VCUTreeSourceNode, describes the work
// with grouping levels, a filter and sort keys (definition objects, or the
// text language below), and calls Process, which returns a new result tree
// of VCUTreeResultNode categories holding references to the source nodes.
//
//   VCUTree tree;
//   if (!tree.SetGroupOpsFromText("Name{TYPE=ALPHA,NUM=3}.Modified{TYPE=DATE,SUBTYPE=YEAR}") ||
//       !tree.SetFilterOpsFromText("(Size >= 10) & (Name ~ *.log)") ||
//       !tree.SetSortOpsFromText("Size{DIR=DEC}.Name{METHOD=MIXEDSTRING}")) {
//     ... VFGetUtLibError() tells which text is wrong, and where
//   }
//   tree.SetRecurseChildren(1);
//   VCUTreeResultNode* result = tree.Process(&sourceRoot);   // null on error
//   ...
//   delete result;                                           // the caller's
//
// Grouping and sorting text: operations separated by "."; each a property
// name, optionally followed by "{key=value,...}" that ends the operation.
// Grouping keys: TYPE = PROP | ALPHA | DATE (default PROP), SUBTYPE = DATE |
// MONTH | YEAR (default DATE), NUM = 0..26 letters per alphabetic group
// (default 1). Sorting keys: DIR = INC | DEC (default INC), METHOD =
// MIXEDSTRING. Keys are upper case; values may be in any case; a key given
// twice takes its last value. The name is the text before "{" as written:
// "Name {DIR=DEC}" sorts by the property "Name " with its trailing blank.
//
// Filter text: one level is `name` (exists), `!name` (does not exist),
// `name op value` with op one of = != > >= < <= ~ (wildcard match), or
// "(" level ")"; two parenthesised levels joined by & (AND) or | (OR). There
// is no precedence: "((A=1)&(B=2))|(C=3)". A value is read as a date and
// time, else a 64-bit integer, else a double, else text; it runs up to the
// next "(" or ")", so "A=1 & B=2" is the single test A = "1 & B=2".
// Parentheses nest at most 256 deep (SetMaxFilterNesting sets another);
// deeper nesting is a syntax error, so no text can exhaust the stack.
//
// Texts are read as follows: operations are split at "." and modifiers at
// "," with blanks around each piece removed and empty pieces dropped (so an
// empty text, or one of blanks and separators only, has no operation); a
// modifier splits at its first "=", and both sides lose their blanks; a key
// must not be empty. Filter values read as dates in the ISO forms
// "2024-01-05", "2024-01-05T10:20[:30[.5]]" and "2024-01-05 10:20"; numbers
// as decimal integers or floating-point numbers. White space is space, tab,
// CR, LF, VT and FF.
//
// Every parser reports the first problem only and leaves what it replaces
// (grouping list, sorting list or filter) empty, never partly built; a
// filter text never reads past its end: "(A=1", whose end comes right after
// the inner level closes, is kTreeErrorMismatchedBraces.
//
// Ownership: definitions handed over with Append…/Set… belong to the tree,
// which deletes them through their virtual destructors (also when replaced
// or cleared). Each result tree belongs to the caller of Process; its data
// nodes refer to, never own, the source nodes, so the source tree must
// outlive it. Out of memory inside an operation: kTreeErrorOutOfMemory.
#pragma once

#include <cstdint>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_array.h>
#include <utilkit/base/vc_key_value_array.h>
#include <utilkit/base/vc_string_array.h>
#include <utilkit/tree/tree_errors.h>
#include <utilkit/tree/tree_filter_and.h>
#include <utilkit/tree/tree_filter_basic.h>
#include <utilkit/tree/tree_filter_or.h>
#include <utilkit/tree/tree_filter_pair.h>
#include <utilkit/tree/tree_group_alphabetic.h>
#include <utilkit/tree/tree_group_by_date.h>
#include <utilkit/tree/tree_group_by_property.h>
#include <utilkit/tree/tree_private_block.h>
#include <utilkit/tree/tree_result_node.h>
#include <utilkit/tree/tree_sort_basic.h>
#include <utilkit/tree/tree_source_node.h>

class UTILKIT_API VCUTree {
 public:
  // No operations, no recursion into children.
  VCUTree();
  VCUTree(const VCUTree&) = delete;
  VCUTree& operator=(const VCUTree&) = delete;
  // Deletes the definitions and the filter, never a result tree.
  virtual ~VCUTree();

  // Builds a new result tree from the children of `sourceRoot` (the root
  // itself is never part of it); the caller owns it. Null when no operation
  // is defined (kTreeErrorNoOperations) or `sourceRoot` is null
  // (kTreeErrorNoSourceTree), location "VCUTree::Process". The algorithm:
  //  - no grouping: each node that passes the filter gets a result node
  //    under its parent's; a refused node takes its subtree with it;
  //  - grouping: each node that passes goes under the innermost of its
  //    categories (made once per id path), or, with recursion, stays under
  //    its parent's result node when its ids equal the parent's; a node with
  //    an empty id is left out at the top level; the children of a refused
  //    or left-out node are still grouped (with recursion);
  //  - the root's children are sorted, every level's with recursion; data
  //    nodes never move past categories, which are ordered by id afterwards.
  // Without recursion, each result node mirrors its source subtree lazily
  // and unfiltered, unsorted (VCUTreeResultNode::SetChildrenFromDataObject).
  virtual VCUTreeResultNode* Process(VCUTreeNodeBase* sourceRoot);

  // Appends a grouping level / sort key and takes ownership. False, with the
  // definition deleted, when memory runs out; false for null.
  char AppendGroupingOp(VCUTreeGroupDefBase* op);
  char AppendSortingOp(VCUTreeSortDefBase* op);
  // Deletes the current filter and takes ownership of `op` (null: no filter).
  void SetFilteringOp(VCUTreeFilterDefBase* op);
  // The filter (still owned by the tree), or null.
  VCUTreeFilterDefBase* GetFilteringOp() const;
  // Copies of the lists; the definitions stay owned by the tree.
  VCArray<VCUTreeGroupDefBase*> GetGroupingOps() const;
  VCArray<VCUTreeSortDefBase*> GetSortingOps() const;
  // Delete every definition of the list and empty it.
  void ClearGrouping();
  void ClearSorting();
  // With recursion the filter, grouping and sorting reach every depth.
  void SetRecurseChildren(char recurse);
  char GetRecurseChildren() const;

  // Replace the grouping list / sorting list / filter from text (see the
  // header comment). On failure the list or filter is left empty and the
  // first problem is on the error stack: grouping kTreeErrorNoGroupingProperties,
  // kTreeErrorGroupType, kTreeErrorSubType, kTreeErrorLettersPerGroup;
  // sorting kTreeErrorNoSortingProperties, kTreeErrorSortDirection,
  // kTreeErrorSortMethod; both kTreeErrorBlankPropertyName and
  // kTreeErrorModifier ("VCUTree::SetOpsFromText"), kTreeErrorBadBraces,
  // kTreeErrorNoModifiers, kTreeErrorModifierFormat
  // ("VCUTree::SeparatePropAndModifiers"); filter kTreeErrorMismatchedBraces,
  // kTreeErrorFilterSyntax ("VCUTree::FilterParseBrace"). Null text counts as "".
  char SetGroupOpsFromText(const char* text);
  char SetSortOpsFromText(const char* text);
  char SetFilterOpsFromText(const char* text);
  // The deepest parentheses SetFilterOpsFromText accepts (default 256).
  // Each level takes a few hundred bytes of the calling thread's stack, so
  // raise it only as far as that stack allows; values below 1 are taken as
  // 1. Never fails.
  void SetMaxFilterNesting(int32_t levels);
  int32_t GetMaxFilterNesting() const;

 private:
  struct Data;

  char SetOpsFromText(char grouping, const char* text);
  char SeparatePropAndModifiers(const char* text, VCString* propName, VCKeyValueArray* modifiers);
  // Parses one brace level at `*cursor`, `depth` levels deep; the new filter
  // (the caller's) or null on error; `*cursor` ends just past its ")".
  VCUTreeFilterDefBase* FilterParseBrace(const char** cursor, int32_t depth = 0);

  void DoGroup(VCUTreeNodeBase* node, VCUTreeResultNode* parent, VCStringArray& parentIds);
  void DoFilterAndSort(VCUTreeResultNode* parent, VCUTreeNodeBase* node);
  void SortChildren(VCUTreeResultNode* node);

  VCTreePrivateBlock<Data> m_pData;
};
