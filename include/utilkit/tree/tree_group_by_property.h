// VCUTreeGroupByProperty: groups nodes by the value of one property.
//
// The id of a node is its property value as text (VCVariant::GetString); a
// node without the property (null value) or with an empty text is not
// grouped. The description is the property name, "=" and the id.
//
//   VCUTreeGroupByProperty channel("Channel");
//   channel.GetCategoryIdForData(&node);         // "3" when Channel is 3
//   channel.GetCategoryDescription("3");         // "Channel=3"
//
// Ownership: plain value semantics; handed to VCUTree it belongs to the tree.
#pragma once

#include <utilkit/base/export.h>
#include <utilkit/tree/tree_group_def_base.h>
#include <utilkit/tree/tree_private_block.h>

class UTILKIT_API VCUTreeGroupByProperty : public VCUTreeGroupDefBase {
 public:
  // Groups by the property "" until SetPropName is called.
  VCUTreeGroupByProperty();
  // Groups by `propName` (null counts as "").
  explicit VCUTreeGroupByProperty(const char* propName);
  VCUTreeGroupByProperty(const VCUTreeGroupByProperty& other);
  VCUTreeGroupByProperty& operator=(const VCUTreeGroupByProperty& other);
  ~VCUTreeGroupByProperty() override;

  // The property value's text; "" when the value is null.
  VCString GetCategoryIdForData(VCUTreeSourceNode* dataObject) override;
  // Property name + "=" + `id`, e.g. "Channel=3".
  VCString GetCategoryDescription(const char* id) override;

  VCString GetPropName() const;
  void SetPropName(const char* propName);

 private:
  struct Data;
  VCTreePrivateBlock<Data> m_pData;
};
