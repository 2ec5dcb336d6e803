// Section spans: the sections of a list as (channel, start, end) of the
// list's value type (double for time, int64_t for points), and the pieces
// the members of VCUSections share: number text, error records, sorting and
// merging, intersecting. Private to the sections subsystem.
//
// Ownership: spans are plain values in std::vector; functions that allocate
// may throw std::bad_alloc, which the calling member turns into its
// out-of-memory error.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include <utilkit/sections/sections.h>

template <class T>
struct VCUSectionSpan {
  int32_t channel;
  T start;
  T end;
};

// Reading and writing the stored pair of the span's value type.
inline VCUSectionSpan<double> VFSectionSpan(const VCUSections::Item& item, double) {
  return {item.channel, item.startTime, item.endTime};
}
inline VCUSectionSpan<int64_t> VFSectionSpan(const VCUSections::Item& item, int64_t) {
  return {item.channel, item.startPoint, item.endPoint};
}
inline VCUSections::Item VFSectionItem(const VCUSectionSpan<double>& span) {
  VCUSections::Item item;
  item.channel = span.channel;
  item.startTime = span.start;
  item.endTime = span.end;
  return item;
}
inline VCUSections::Item VFSectionItem(const VCUSectionSpan<int64_t>& span) {
  VCUSections::Item item;
  item.channel = span.channel;
  item.startPoint = span.start;
  item.endPoint = span.end;
  return item;
}

// Appends `value` as "%0.12lf" writes it in the C locale (a point as the
// whole number with 12 zero decimals, exact for every 64-bit value).
void VFAppendSectionNumber(std::string* text, double value);
void VFAppendSectionNumber(std::string* text, int64_t value);

// Pushes `code` named "ch<channel>, index <index>: <start>,<end>" at
// `location`; returns false.
bool VFReportSection(int32_t code, const char* location, const VCUSections::Item& item,
                     int32_t index, VTSectionUnits units);

// The spans of `items` in list order. False with `*bad` the index of the
// first section whose start is after its end.
template <class T>
bool VFSectionSpans(const VCArray<VCUSections::Item>& items, std::vector<VCUSectionSpan<T>>* spans,
                    int32_t* bad) {
  spans->clear();
  spans->reserve(static_cast<size_t>(items.GetSize()));
  for (int32_t i = 0; i < items.GetSize(); ++i) {
    const VCUSectionSpan<T> span = VFSectionSpan(items[i], T{});
    if (!(span.start <= span.end)) {
      *bad = i;
      return false;
    }
    spans->push_back(span);
  }
  return true;
}

// Sorts by channel, start and end, then merges the spans of one channel
// that overlap or touch: the next start is at most the end (time), or the
// end plus 1 (points: adjacent samples). Every span must have start <= end.
template <class T>
void VFMergeSectionSpans(std::vector<VCUSectionSpan<T>>* spans) {
  constexpr T step = std::is_integral_v<T> ? 1 : 0;
  std::sort(spans->begin(), spans->end(), [](const auto& a, const auto& b) {
    if (a.channel != b.channel) return a.channel < b.channel;
    if (a.start != b.start) return a.start < b.start;
    return a.end < b.end;
  });
  size_t kept = 0;
  for (const VCUSectionSpan<T>& span : *spans) {
    if (kept > 0) {
      VCUSectionSpan<T>& last = (*spans)[kept - 1];
      // start - step cannot overflow: start > end of the last span here.
      if (last.channel == span.channel &&
          (span.start <= last.end || span.start - step <= last.end)) {
        last.end = std::max(last.end, span.end);
        continue;
      }
    }
    (*spans)[kept++] = span;
  }
  spans->resize(kept);
}

// The intersection of two merged span lists, itself merged.
template <class T>
std::vector<VCUSectionSpan<T>> VFIntersectSectionSpans(const std::vector<VCUSectionSpan<T>>& a,
                                                       const std::vector<VCUSectionSpan<T>>& b) {
  std::vector<VCUSectionSpan<T>> out;
  size_t i = 0, j = 0;
  while (i < a.size() && j < b.size()) {
    if (a[i].channel != b[j].channel) {
      (a[i].channel < b[j].channel ? i : j)++;
      continue;
    }
    const T start = std::max(a[i].start, b[j].start);
    const T end = std::min(a[i].end, b[j].end);
    if (start <= end) out.push_back({a[i].channel, start, end});
    (a[i].end < b[j].end ? i : j)++;
  }
  return out;
}
