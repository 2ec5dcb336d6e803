#include <utilkit/base/text_table.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <iterator>

namespace {

struct Expected {
  int32_t code;
  const char* text;
};

// Every message of the library as hosts see it, written out independently of the
// table's own source so that a dropped, renumbered or re-worded entry shows up here.
constexpr Expected kExpected[] = {
    {-656171, "Invalid property type: "},
    {-656170, "The data types of the properties passed to CopyPropertyValue are not the same."},
    {-656169, "Mandatory property is not defined: "},
    {-656168, "Unsupported property type: "},
    {-656167, "Invalid default value for enum property"},
    {-656166, "Invalid enumopts attribute"},
    {-656165, "Invalid maxallowequal attribute"},
    {-656164, "Invalid minallowequal attribute"},
    {-656163, "Invalid max attribute"},
    {-656162, "Invalid min attribute"},
    {-656161, "Syntax error in user defined property value. "},
    {-656068, "Report library is not well-formed XML: "},
    {-656067, "Cannot read or write report library file: "},
    {-656066, "Table too large for a report library, cells: "},
    {-656065, "Image data does not match its format: "},
    {-656064, "Bad base64 data in report library item: "},
    {-656063, "Malformed report library item: "},
    {-656062, "Unsupported report library version: "},
    {-656061, "Not a report library, root element: "},
    {-656002, "Divide by zero"},
    {-656001, "Attempt to write to a column that is not writable"},
    {-656000, "Invalid type for writable column in VCUTableData"},
    {-655999, "Out of range row number passed to AddInputTable"},
    {-655998, "Problem setting the buffer size to hold the data."},
    {-655997, "Filter is only valid for string columns"},
    {-655996, "The category column must be one of the sort columns."},
    {-655995, "Virtual column returning row indices can only return a Huge value"},
    {-655994, "Virtual column with an expression can only return a Double value"},
    {-655992, "OR filter must have two sub-filters assigned"},
    {-655991, "AND filter must have two sub-filters assigned"},
    {-655990, "Invalid column type specified"},
    {-655989, "Sort operation failed"},
    {-655988, "Invalid sort operation configured"},
    {-655987, "No columns defined for sort operation"},
    {-655986, "Status column is set to be copied from an input column which has no status: "},
    {-655985, "Compression operation failed"},
    {-655984, "Compression using string columns for the search is not currently supported."},
    {-655983, "Invalid compression operation configured"},
    {-655982, "No select column configured"},
    {-655981, "No search columns configured"},
    {-655980, "Invalid selection type set for Compression operation."},
    {-655979, "No source column has been set for new status column: "},
    {-655978, "No expression has been set for new column: "},
    {-655977, "Keyword has not been defined for new column"},
    {-655975, "Row number out of range"},
    {-655974, "Column index out of range"},
    {-655972, "No output columns defined for table"},
    {-655971, "No input tables defined"},
    {-655970, "Unknown column data type used for filter"},
    {-655969, "Columns must be same type in all input tables. Bad column: "},
    {-655968, "Column not found: "},
    {-655966, "Invalid comparison set for filter"},
    {-655964,
     "Too many table rows to perform sort and filter. You can increase \nthe limit via the "
     "preference /Libraries/utilkit/MaximumTableProcessorRows"},
    {-655963, "Failed to process filtering and sorting on table"},
    {-655962, "Attempt to remove a table from the table processor which is not defined"},
    {-655961, "Table has already been added to the operation list"},
    {-655865, "Failed RegisterServiceCtrlHandler"},
    {-655864, "Error starting service"},
    {-655863, "Error deleting service"},
    {-655862, "Error creating service"},
    {-655861, "Error opening service control manager"},
    {-655769, "No text specified in Text child of node :"},
    {-655768, "Node does not have a Text child : "},
    {-655767, "Unknown error in GetAttribute"},
    {-655766, "No attribute found with name : "},
    {-655765, "No attributes available while searching for attribute : "},
    {-655764, "No element found with name : "},
    {-655763, "Unknown error in XML"},
    {-655762, "There is more than one element with the tag name : "},
    {-655761, "Error parsing XML text"},
    {-655670, "Invalid time column: "},
    {-655669, "Invalid section value: "},
    {-655668, "Sections are held in other units: "},
    {-655667, "Section names an unknown channel: "},
    {-655666, "Section lies outside the signal: "},
    {-655665, "Section starts after its end: "},
    {-655664, "Invalid number of points: "},
    {-655663, "Invalid sample rate: "},
    {-655662, "Malformed sections text: "},
    {-655661, "Section index out of range: "},
    {-655578, "Timeout waiting for response from socket"},
    {-655577, "Out of memory"},
    {-655576, "Timeout writing data to socket"},
    {-655575, "Connection lost"},
    {-655574, "No active connection"},
    {-655573, "Error in socket recv"},
    {-655572, "Error in socket send"},
    {-655571, "Malformed message form at byte: "},
    {-655570, "Error in socket close"},
    {-655569, "Error in socket select"},
    {-655568, "Connection idle too long, seconds: "},
    {-655567, "Too many connections, limit: "},
    {-655566, "Timeout waiting for connection: "},
    {-655565, "Socket error code"},
    {-655564, "Unknown host: "},
    {-655563, "Connection refused: "},
    {-655562, "Error during socket call"},
    {-655561, "Message exceeds the size limit"},
    {-655477, "Bad format of modifiers"},
    {-655476, "No modifiers"},
    {-655475, "Badly positioned {}"},
    {-655474, "Blank property name"},
    {-655473, "Invalid value for Method"},
    {-655472, "No source data tree set"},
    {-655471, "No operations defined"},
    {-655470, "Invalid sort direction"},
    {-655469, "No sorting properties defined"},
    {-655468, "Filter syntax error"},
    {-655467, "Mis-matched braces"},
    {-655466, "Invalid modifier"},
    {-655465, "Invalid sub type"},
    {-655464, "Invalid number of letters per group"},
    {-655463, "Invalid group type"},
    {-655462, "Invalid format of group text"},
    {-655461, "No grouping properties defined"},
    {-68448, "Logarithm of zero"},
    {-68445, "Division by zero"},
    {-68444, "Unknown function: "},
    {-68443, "Unknown variable: "},
    {-68442, "Wrong number of arguments for function: "},
    {-68441, "Expression is nested too deeply: "},
    {-68440, "Syntax error in expression: "},
    {-68439, "Could not get the value of variable: "},
    {-68438, "No values given for variable: "},
    {-68437, "No expression has been set"},
};

constexpr const char* kMonths[] = {"January",   "February", "March",    "April",
                                   "May",       "June",     "July",     "August",
                                   "September", "October",  "November", "December"};

TEST(TextTableTest, EveryLibraryCodeResolvesToItsText) {
  const VCTextTable* t = VFGetUtilKitText();
  for (const Expected& e : kExpected) {
    SCOPED_TRACE(e.code);
    EXPECT_TRUE(VFTextHas(t, e.code));
    EXPECT_STREQ(VFTextGet(t, e.code), e.text);
  }
  for (int32_t m = 0; m < 12; ++m) EXPECT_STREQ(VFTextGet(t, 101 + m), kMonths[m]) << m;
  EXPECT_EQ(VFTextCount(t), std::size(kExpected) + 12);
}

// Lookups are binary searches, so an unsorted table or a duplicated code makes
// some entries unreachable: walking all codes must find every entry, and no
// code between them.
TEST(TextTableTest, EveryEntryIsFoundAndNoOtherCode) {
  const VCTextTable* t = VFGetUtilKitText();
  size_t found = 0;
  for (int32_t code = -656200; code <= 200; ++code) {
    if (VFTextHas(t, code)) {
      ++found;
      EXPECT_NE(std::strlen(VFTextGet(t, code)), 0u) << code;
    } else {
      ASSERT_STREQ(VFTextGet(t, code), "") << code;
    }
  }
  EXPECT_EQ(found, VFTextCount(t));
}

TEST(TextTableTest, UnknownCodesAndNullTableGiveEmptyText) {
  EXPECT_STREQ(VFTextGet(VFGetUtilKitText(), 123456), "");
  EXPECT_STREQ(VFTextGet(nullptr, 101), "");
  EXPECT_FALSE(VFTextHas(nullptr, 101));
  EXPECT_EQ(VFTextCount(nullptr), 0u);
}

}  // namespace
