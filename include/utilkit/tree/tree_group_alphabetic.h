// VCUTreeGroupAlphabetic: groups nodes by the first letter of a property.
//
// The first character of the property value's text, upper-cased, picks the
// group. With one letter per group the id is that letter ("A" holds "apple"
// and "Avocado"); with n letters the groups are "A-C", "D-F", ... for n = 3.
// Labels are never clipped at "Z": the second letter is the start of the
// next group minus one, so the last group for n = 3 is "Y-[" and for n = 5
// "Z-^". Hosts match these ids, so they stay exactly like that. A value that
// is null or does not start with a letter A-Z (in either case) gives "".
//
//   VCUTreeGroupAlphabetic byName("Name");
//   byName.SetNumLettersPerGroup(3);
//   byName.GetCategoryIdForData(&node);   // "D-F" when Name is "echo"
//
// Letters per group: 0 after the constructors (the text parser always sets
// it, default 1). 0 or less is treated as 1. More than 26 gives one group
// whose second character follows the same rule (the byte 64 + n).
//
// Ownership: plain value semantics; handed to VCUTree it belongs to the tree.
#pragma once

#include <cstdint>

#include <utilkit/base/export.h>
#include <utilkit/tree/tree_group_def_base.h>
#include <utilkit/tree/tree_private_block.h>

class UTILKIT_API VCUTreeGroupAlphabetic : public VCUTreeGroupDefBase {
 public:
  // Groups by the property "" until SetPropName is called.
  VCUTreeGroupAlphabetic();
  // Groups by `propName` (null counts as "").
  explicit VCUTreeGroupAlphabetic(const char* propName);
  VCUTreeGroupAlphabetic(const VCUTreeGroupAlphabetic& other);
  VCUTreeGroupAlphabetic& operator=(const VCUTreeGroupAlphabetic& other);
  ~VCUTreeGroupAlphabetic() override;

  // The letter or letter range of the value's first character, or "".
  VCString GetCategoryIdForData(VCUTreeSourceNode* dataObject) override;

  VCString GetPropName() const;
  void SetPropName(const char* propName);
  int32_t GetNumLettersPerGroup() const;
  // Any value is stored; 0 or less groups as 1.
  void SetNumLettersPerGroup(int32_t numLetters);

 private:
  struct Data;
  VCTreePrivateBlock<Data> m_pData;
};
