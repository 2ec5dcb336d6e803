// VCUTreeGroupByDate: groups nodes by the day, month or year of a date.
//
// Only a date-and-time value (VCVariant type 25) is grouped; any other
// value, a text that looks like a date included, gives "" (not grouped).
//
//   type    id                              description
//   day     "YYYY-MM-DD", e.g. "2024-00-05"  "05-January-2024"
//   month   "00" ... "11"                   "January" ... "December"
//   year    "2024"                          the id itself
//
// Months are used exactly as VCTime reports them, counted from 0, so the id
// of a January date carries "00", and month m is named by the library's
// text 101 + m. Ids therefore sort chronologically.
//
//   VCUTreeGroupByDate byMonth("Modified", VCUTreeGroupByDate::kByMonth);
//   byMonth.GetCategoryIdForData(&node);       // "01" for a date in February
//   byMonth.GetCategoryDescription("01");      // "February"
//
// For an id that this class did not make (a host's own text), a day
// description is the id itself unless it reads as three numbers
// "Y-M-D", and a month outside 0 to 11 has the description "".
//
// Ownership: plain value semantics; handed to VCUTree it belongs to the tree.
#pragma once

#include <cstdint>

#include <utilkit/base/export.h>
#include <utilkit/tree/tree_group_def_base.h>
#include <utilkit/tree/tree_private_block.h>

class UTILKIT_API VCUTreeGroupByDate : public VCUTreeGroupDefBase {
 public:
  enum VTGroupByDateType : int32_t { kByDay = 0, kByMonth = 1, kByYear = 2 };

  // Groups by the day of the property "" until set otherwise.
  VCUTreeGroupByDate();
  // Groups by `propName` (null counts as "") at the level `type`.
  VCUTreeGroupByDate(const char* propName, VTGroupByDateType type);
  VCUTreeGroupByDate(const VCUTreeGroupByDate& other);
  VCUTreeGroupByDate& operator=(const VCUTreeGroupByDate& other);
  ~VCUTreeGroupByDate() override;

  // The id of the value's day, month or year (table above), or "".
  VCString GetCategoryIdForData(VCUTreeSourceNode* dataObject) override;
  // The description of `id` (table above).
  VCString GetCategoryDescription(const char* id) override;

  VCString GetPropName() const;
  void SetPropName(const char* propName);
  VTGroupByDateType GetGroupByDateType() const;
  // A type outside day, month and year gives "" for every node.
  void SetGroupByDateType(VTGroupByDateType type);

 private:
  struct Data;
  VCTreePrivateBlock<Data> m_pData;
};
