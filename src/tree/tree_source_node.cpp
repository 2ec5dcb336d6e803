#include <utilkit/tree/tree_source_node.h>

#include "tree/tree_node_data.h"

namespace {
constexpr int32_t kSourceNodeType = 1;
}

VCUTreeSourceNode::VCUTreeSourceNode() : VCUTreeSourceNode(nullptr) {}

VCUTreeSourceNode::VCUTreeSourceNode(VCUTreeSourceNode* parent)
    : VCUTreeNodeBase(kSourceNodeType, parent) {
  VCTreeNodeAccess::SetKind(this, VCTreeNodeKind::kSource);
}

VCUTreeSourceNode::VCUTreeSourceNode(const VCUTreeSourceNode& other) : VCUTreeNodeBase(other) {
  VCTreeNodeAccess::SetKind(this, VCTreeNodeKind::kSource);
}

VCUTreeSourceNode& VCUTreeSourceNode::operator=(const VCUTreeSourceNode& other) = default;

VCUTreeSourceNode::~VCUTreeSourceNode() = default;

int VCUTreeSourceNode::ComparePropertyValues(const char* propName, VCVariant& a, VCVariant& b) {
  if (a == b) return 0;
  return a > b ? 1 : -1;
}
