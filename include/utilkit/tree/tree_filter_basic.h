// VCUTreeFilterBasic: one test on one property of a node.
//
// The test reads the node's property value v and checks it against the
// filter's own value:
//   kExists / kNotExists          v is not null / v is null
//   kEqual ... kLessOrEqual       v compared with the value (VCVariant::Compare
//                                 with kCompareConvert, so the text "3" equals
//                                 the number 3); a null v fails all six
//   kPatternMatch                 v's text matches the value's text as a
//                                 wildcard pattern ("*", "?"), ignoring case
//   kNone                         no test: every node passes
// A type outside 0 to 9 (set by a host) lets no node pass.
//
//   VCUTreeFilterBasic big("Size", VCUTreeFilterBasic::kGreaterOrEqual, VCVariant(int64_t{10}));
//   VCUTreeFilterBasic logs("Name", VCUTreeFilterBasic::kPatternMatch, VCVariant("*.log"));
//
// Ownership: plain value semantics; handed to VCUTree or to an AND or OR it
// belongs to the receiver.
#pragma once

#include <cstdint>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_variant.h>
#include <utilkit/tree/tree_filter_def_base.h>
#include <utilkit/tree/tree_private_block.h>

class UTILKIT_API VCUTreeFilterBasic : public VCUTreeFilterDefBase {
 public:
  enum VTFilterBasicType : int32_t {
    kNone = 0,
    kExists = 1,
    kNotExists = 2,
    kEqual = 3,
    kNotEqual = 4,
    kGreater = 5,
    kGreaterOrEqual = 6,
    kLess = 7,
    kLessOrEqual = 8,
    kPatternMatch = 9,
  };

  // Type kNone on the property "" with a null value: passes every node.
  VCUTreeFilterBasic();
  // Tests `propName` (null counts as "") by `type` against `value`.
  VCUTreeFilterBasic(const char* propName, VTFilterBasicType type, const VCVariant& value);
  VCUTreeFilterBasic(const VCUTreeFilterBasic& other);
  VCUTreeFilterBasic& operator=(const VCUTreeFilterBasic& other);
  ~VCUTreeFilterBasic() override;

  // The test in the header comment.
  char DoesObjectPassFilter(VCUTreeSourceNode* node) override;

  VCString GetPropName() const;
  void SetPropName(const char* propName);
  VTFilterBasicType GetType() const;
  void SetType(VTFilterBasicType type);
  VCVariant GetValue() const;
  void SetValue(const VCVariant& value);

 private:
  struct Data;
  VCTreePrivateBlock<Data> m_pData;
};
