// VCULibraryXML_ItemTable: a table of typed columns on a report library page.
//
// The item keeps what a reader of the report needs: each column's name,
// type (VTTableDataType) and units, and each cell as its display text.
// SetFromTable fills it from any VCUTable, so a table processor's output
// goes straight in; numbers are written in their shortest form that reads
// back to the same value, Enum cells as their option name (the code when it
// has none), and cells whose status word marks them invalid as "" (no value).
//
//   auto* result = new VCULibraryXML_ItemTable();
//   if (!result->SetFromTable(*processor.GetOutputTable())) { /* see the error stack */ }
//   page->AppendItem(result);  // the page owns it now
//
// Size limit: a table may hold at most as many cells (rows times columns) as
// the preference "/FileFormats/LibraryXML/MaximumTableSize" says
// (kDefaultMaxTableCells when it is not set or below 0). A larger table is
// refused with -656066, both when it is filled and when it is read from a
// file; it is never cut short. The preference is read on every check.
//
// In the file: a "Table" element with the attributes "columns" and "rows"
// (counts), holding one "Column" element per column (attributes "name",
// "type" as the type's name: "Short", "Long", "Huge", "Float", "Double",
// "Text", "Enum", and "units"), then one "Row" element per row holding one
// "Cell" element per column, whose attribute "value" is the cell's text
// ("Cell" without it for "").
//
// Ownership: the item owns copies of all its texts.
#pragma once

#include <cstdint>
#include <vector>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_string.h>
#include <utilkit/base/vc_string_array.h>
#include <utilkit/library_xml/library_xml_item.h>
#include <utilkit/table/table.h>

class UTILKIT_API VCULibraryXML_ItemTable : public VCULibraryXML_Item {
 public:
  // Cells allowed when the preference is not set.
  static constexpr int64_t kDefaultMaxTableCells = 1000000;
  // The preference that limits the cells of a table.
  static constexpr const char* kMaxTableSizePreference = "/FileFormats/LibraryXML/MaximumTableSize";

  VCULibraryXML_ItemTable() = default;
  ~VCULibraryXML_ItemTable() override;

  VTLibraryXMLItemType GetType() const override { return VTLibraryXMLItemType::Table; }

  // Replaces the contents by `table`'s columns and rows, and the title by
  // its name when the item has no title. False, leaving the item as it was,
  // with -656066 when the table has more cells than the limit, the table's
  // own read errors, or -655577 when memory runs out.
  bool SetFromTable(VCUTable& table);
  // Adds a column (only while the table has no rows). False with -656063
  // once rows exist or for a type outside Short..Enum, -656066 when the
  // cells would exceed the limit.
  bool AddColumn(const char* name, VTTableDataType type, const char* units);
  // Adds a row of cell texts, one per column. False with -656063 when the
  // count differs from the number of columns, -656066 when the cells would
  // exceed the limit.
  bool AddRow(const VCStringArray& cells);
  // Removes all columns and rows.
  void RemoveAll();

  int32_t GetNumCols() const { return static_cast<int32_t>(m_names.GetSize()); }
  int64_t GetNumRows() const;
  // Column metadata; "" (None for the type) for a column out of range.
  VCString GetColName(int32_t col) const;
  VCString GetColUnits(int32_t col) const;
  VTTableDataType GetColType(int32_t col) const;
  // The text of a cell (rows from 1, columns from 0); "" out of range.
  const VCString& GetCell(int64_t row, int32_t col) const;

  // The limit on cells now in force (see above).
  static int64_t GetMaxTableCells();
  // The name of a column type ("Double"); "" outside Short..Enum.
  static const char* TypeName(VTTableDataType type);
  // The type called `name`; None for any other name.
  static VTTableDataType TypeFromName(const char* name);

 private:
  // False with -656066 at `location` when `cells` exceeds the limit.
  static bool CheckCells(int64_t cells, const char* location);

  VCStringArray m_names;
  VCStringArray m_units;
  std::vector<VTTableDataType> m_types;
  std::vector<VCString> m_cells;  // row by row
};
