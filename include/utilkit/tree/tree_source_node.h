// VCUTreeSourceNode: the base of a host's own tree nodes.
//
// The tree processor (VCUTree) reads a host's tree only through this class:
// the host derives its node class from it and answers property values by
// name. Every grouping, filtering and sorting definition reads node data
// through GetPropertyValue and nothing else.
//
//   class FileNode : public VCUTreeSourceNode {
//    public:
//     FileNode(FileNode* parent, const char* name) : VCUTreeSourceNode(parent), m_name(name) {}
//     VCVariant GetPropertyValue(const char* propName) override {
//       if (VCString(propName) == "Name") return VCVariant(m_name.c_str());
//       return VCVariant();  // null: no such property
//     }
//    private:
//     VCString m_name;
//   };
//
// Ownership: as for VCUTreeNodeBase, a node owns its children. Result trees
// built from a source tree refer to its nodes without owning them, so the
// source tree must outlive every result tree built from it.
#pragma once

#include <cstdint>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_variant.h>
#include <utilkit/tree/tree_node_base.h>

class UTILKIT_API VCUTreeSourceNode : public VCUTreeNodeBase {
 public:
  // A root source node (node type 1).
  VCUTreeSourceNode();
  // A source node appended to `parent`'s children (null: a root).
  explicit VCUTreeSourceNode(VCUTreeSourceNode* parent);
  // Copies the node's own data only: the copy is a root without children.
  VCUTreeSourceNode(const VCUTreeSourceNode& other);
  VCUTreeSourceNode& operator=(const VCUTreeSourceNode& other);
  ~VCUTreeSourceNode() override;

  // The value of the named property of the object this node stands for, or
  // a null variant when the object has no such property. Never fails.
  virtual VCVariant GetPropertyValue(const char* propName) = 0;
  // 0 when `a` equals `b`, 1 when `a` is greater, else -1 (VCVariant's
  // comparison; `propName` is not used). For hosts to override; the tree
  // processor does not call it.
  virtual int ComparePropertyValues(const char* propName, VCVariant& a, VCVariant& b);
};
