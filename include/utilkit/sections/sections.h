// VCUSections: the marked stretches (sections) of a sampled signal, per
// channel.
//
// An ordered list of sections, each a channel number, a start and an end.
// A list holds all its sections in one unit: time (seconds, double) or
// points (sample indices from 0, 64-bit). A host checks the list against its
// signal (sample rate and number of points), converts it between time and
// points, normalises it, combines two lists, keeps it as text, and picks the
// rows of a table that lie inside the sections of one channel.
//
//   VCUSections sections;                         // a time list
//   sections.SetFromText("ch1: 0.5,1.25; 2,3\nch2: 0,0.1\n");
//   if (!sections.Validate(1000.0, 5000, 4, true)) { /* one record per violation */ }
//   VCArray<int64_t> rows;
//   if (sections.GetTableRows(&table, 1, timeCol, &rows))
//     processor.AddInputTable(&table, rows.GetData(), rows.GetSize());
//
// Text form (GetText writes it, SetFromText reads it):
//   text    = { group }
//   group   = "ch" channel ":" [ section { ";" section } ]
//   section = number "," number                    (start, end)
//   channel = [ "-" ] digit { digit }               (32-bit)
//   number  = [ "-" ] digit { digit } [ "." { digit } ]
// "ch", the channel and ":" are written together; white space (space, tab,
// CR, LF) may stand anywhere else between the pieces, so blank lines do no
// harm. GetText writes one line "ch%ld:" per run of consecutive sections of
// one channel, their sections "%0.12lf,%0.12lf" joined by ";", each line
// ended by "\n" (an empty list gives ""); reading keeps the list order, so
// writing, reading and writing again gives the same text. A points list
// writes whole numbers ("7.000000000000", exact for any 64-bit value) and
// reads only numbers whose decimals are all 0.
//
// Validity: a section needs start <= end; start == end is allowed (one
// sample, or one instant). Inside a signal of n points at rate r means
// 0 <= start and end <= n - 1 (points) or end <= (n - 1) / r (time, that
// quotient as a double, so the exact last sample time passes). Channels are
// not limited except by Validate's channel count (0 to count - 1).
//
// Ownership: the list owns its sections; it takes no pointers. Not copyable
// by construction (a copy can run out of memory): use Copy. Errors are
// pushed at "VCUSections::<member>" with the codes of sections_errors.h; a
// failed operation leaves the list as it was.
#pragma once

#include <cstdint>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_array.h>
#include <utilkit/base/vc_string.h>
#include <utilkit/table/table.h>

// The unit of a sections list.
enum class VTSectionUnits : int32_t {
  Time = 0,    // seconds, double
  Points = 1,  // sample indices, int64_t
};

class UTILKIT_API VCUSections {
 public:
  // One section as stored; a time list uses startTime/endTime, a points
  // list startPoint/endPoint (the other pair is 0).
  struct Item {
    int32_t channel = 0;
    double startTime = 0.0, endTime = 0.0;
    int64_t startPoint = 0, endPoint = 0;
  };

  // An empty list in `units`.
  explicit VCUSections(VTSectionUnits units = VTSectionUnits::Time);
  ~VCUSections();
  VCUSections(const VCUSections&) = delete;
  VCUSections& operator=(const VCUSections&) = delete;

  VTSectionUnits GetUnits() const { return m_units; }
  int32_t GetCount() const { return m_items.GetSize(); }
  // Empties the list, keeping its units / changing them to `units`.
  void Clear();
  void Clear(VTSectionUnits units);
  // Makes this list an independent copy of `source` (units too). Fails
  // only when memory runs out.
  bool Copy(const VCUSections& source);

  // Appends a section. Fails with kSectionsErrorUnits for the other units'
  // adder, kSectionsErrorValue for a time that is not finite, or out of
  // memory. Start and end are not checked here (see Validate).
  bool AddTime(int32_t channel, double start, double end);
  bool AddPoints(int32_t channel, int64_t start, int64_t end);
  // Removes the section at `index`; later ones move down.
  // kSectionsErrorIndex for an index outside 0 to count - 1.
  bool Remove(int32_t index);
  // The section at `index` (any pointer may be null). kSectionsErrorIndex
  // for a bad index, kSectionsErrorUnits for the other units' reader.
  bool GetTime(int32_t index, int32_t* channel, double* start, double* end) const;
  bool GetPoints(int32_t index, int32_t* channel, int64_t* start, int64_t* end) const;
  // The indices of the sections of `channel`, in list order (none: empty).
  // Fails only when memory runs out.
  bool GetIndicesOfChannel(int32_t channel, VCArray<int32_t>* indices) const;

  // The text form (see above). Fails only when memory runs out.
  bool GetText(VCString* text) const;
  // Replaces the list by the sections of `text`, read in this list's units.
  // kSectionsErrorSyntax "line <l>, column <c>: '<piece>'" (counted from
  // 1; "end of text" in place of the piece at the end) for the first
  // malformed piece: "ch" missing, a channel that is not a 32-bit number,
  // ":" or "," or a number missing, a ";" not followed by a section, a
  // number out of range (beyond a double; for points, a fraction or beyond
  // 64 bits), or a null text.
  bool SetFromText(const char* text);

  // Checks the list against a signal of `pointCount` samples at `rate`
  // samples per second and, when `channelCount` >= 0, channels 0 to
  // channelCount - 1. kSectionsErrorRate (rate not > 0 or not finite) and
  // kSectionsErrorPointCount (below 1) are checked first; then, per section
  // in list order, kSectionsErrorStartAfterEnd, kSectionsErrorOutside and
  // kSectionsErrorChannel, named "ch<channel>, index <i>: <start>,<end>".
  // Stops at the first violation unless `reportAll` (then one record per
  // violation). The rate is checked for a points list too.
  bool Validate(double rate, int64_t pointCount, int32_t channelCount = -1,
                bool reportAll = false) const;

  // The sample nearest to time * rate (exactly, before any rounding), a
  // half-sample time going to the later sample. kSectionsErrorRate for a bad rate,
  // kSectionsErrorValue when the time is not finite or the sample is beyond
  // 64 bits.
  static bool TimeToPoint(double time, double rate, int64_t* point);
  // Converts a time list to points at `rate`: a start goes to the first
  // sample at or after it, an end to the last sample at or before it (a
  // position within 1e-9 of a sample counts as that sample, absorbing the
  // rounding of time * rate), so that the section converted back lies
  // inside the original. A section holding no sample (shorter than a
  // sample step between two samples, or start after end) is dropped.
  // kSectionsErrorRate, kSectionsErrorUnits (already points),
  // kSectionsErrorValue (beyond 64 bits), out of memory.
  bool ConvertToPoints(double rate);
  // Converts a points list to time at `rate`: point / rate.
  // kSectionsErrorRate, kSectionsErrorUnits (already time),
  // kSectionsErrorValue (a time beyond a double), out of memory.
  bool ConvertToTime(double rate);

  // Sorts by channel, then start, and merges sections of one channel that
  // overlap or touch (time: next start <= end; points: next start <=
  // end + 1) into one. kSectionsErrorStartAfterEnd for the first section
  // with start > end; out of memory.
  bool Normalise();
  // This list becomes the normalised union / intersection of itself and
  // `other` (which may be this list). Sections touching at one instant
  // intersect in a section of that instant. kSectionsErrorUnits when the
  // units differ; then as Normalise for either list.
  bool Unite(const VCUSections& other);
  bool Intersect(const VCUSections& other);

  // Appends to `rows` (emptied first) the 1-based rows of `table` inside a
  // section of `channel`, ascending and each once: the selection that
  // VCUTableProcessor::AddInputTable(table, rows->GetData(),
  // rows->GetSize()) takes. A time list needs `timeColumn`, a Short, Long,
  // Huge, Float or Double column of times in seconds; a row is inside when
  // start <= time <= end (a NaN time never is); O(rows + sections) for
  // ascending times, O(rows log sections) otherwise. A points list takes
  // timeColumn -1: row r is point r - 1. Status words are not consulted.
  // kSectionsErrorUnits (a time list with a negative column, a points list
  // with any but -1), kSectionsErrorTimeColumn (no such column, or not
  // numeric), kSectionsErrorStartAfterEnd (a section of the channel), the
  // table's own read errors, out of memory (also for more than INT32_MAX
  // rows kept); `rows` is then empty.
  bool GetTableRows(VCUTable* table, int32_t channel, int32_t timeColumn,
                    VCArray<int64_t>* rows) const;

 private:
  // Normalise (`how` 0), or unite (1) / intersect (2) with `other`.
  bool CombineWith(const VCUSections* other, int32_t how, const char* location);

  VTSectionUnits m_units;
  VCArray<Item> m_items;
};
