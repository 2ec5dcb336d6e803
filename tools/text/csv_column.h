// CsvColumn: one typed column of a CSV file, built cell by cell as the
// reader streams the records (see table_csv.h for the header syntax).
//
// A declared column parses each cell into its type at once; a text cell
// goes into the dictionary, an Enum cell becomes its option's code. A
// column declared without a type starts as long and widens as its cells
// require: to huge, to double (an empty cell makes it double, as NaN), and
// to text when a cell is not a number; the reader then re-reads that
// column's earlier cells as texts (Add returns kToText). At the end a
// column with no number is text.
//
//   CsvColumn column(header);
//   for (each cell) if (column.Add(cell, &dictionary) == CsvColumn::kBad) ... error
//   column.Finish(&dictionary);   // false: re-read every cell as text
//   column.MoveInto(&table, &dictionary);
//
// Ownership: the column owns its values until MoveInto hands them to the
// table (and frees them); texts are pooled in the caller's dictionary.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <utilkit/base/dictionary.h>
#include <utilkit/table/memory_table.h>

namespace utilkit::tool {

// One CSV column as the header declares it.
struct CsvColumnHeader {
  std::string name;
  size_t field = 0;
  VTTableDataType type = VTTableDataType::None;  // None: inferred from the cells
  bool isStatus = false;
  bool hasOptions = false;
  std::vector<int32_t> codes;
  std::vector<std::string> names;
};

// Reads a header cell: "name", "name:type", "name:enum(options)" or
// "name:status"; the name ends at the first colon after which a type reads.
// False when a colon is followed by no type and none later is.
bool ParseCsvHeaderCell(std::string_view cell, CsvColumnHeader* header);

class CsvColumn {
 public:
  enum Result { kOk, kBad, kToText };

  explicit CsvColumn(CsvColumnHeader header);

  const CsvColumnHeader& Header() const { return m_header; }
  // What a bad cell should have been: "a double", "a status word", ...
  std::string Expected() const;

  // Adds the next cell. kBad: the cell is not of the declared type.
  // kToText: an inferred column became text; the caller re-adds every
  // earlier cell with AddText, then this one.
  Result Add(std::string_view cell, VCUDictionary* dictionary);
  void AddText(std::string_view cell, VCUDictionary* dictionary) {
    m_refs.push_back(dictionary->InsertString(cell));
  }

  // Makes room for `rows` cells (an estimate; more may follow).
  void Reserve(size_t rows);

  // Settles an inferred column's type; false when it is to be re-read as
  // text from its first cell (it holds no number).
  bool Finish();

  // Adds the values to `table` as a column (status words: to the column
  // they belong to) and frees them here.
  void MoveInto(VCUTableMemory* table, VCUDictionary* dictionary);

 private:
  bool AddEnum(std::string_view cell);
  bool AddStatus(std::string_view cell);
  void Widen(VTTableDataType to);
  template <class T>
  void Release(std::vector<T>& values) {
    std::vector<T>().swap(values);
  }

  CsvColumnHeader m_header;
  VTTableDataType m_type;  // the type of the values held so far
  bool m_inferred;
  bool m_anyNumber = false;
  std::vector<int16_t> m_shorts;
  std::vector<int32_t> m_longs;  // Long and Enum
  std::vector<int64_t> m_huges;
  std::vector<float> m_floats;
  std::vector<double> m_doubles;
  std::vector<VCUDictionaryRef*> m_refs;
  std::vector<uint16_t> m_status;
  // Enum options by exact name, and by lower-case name (the first option).
  std::unordered_map<std::string, int32_t> m_exact, m_folded;
  std::string m_key;
};

}  // namespace utilkit::tool
