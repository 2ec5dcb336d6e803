// Normalising VCUSections and combining two lists.
#include <utility>
#include <vector>

#include <utilkit/base/error_report.h>
#include <utilkit/sections/sections.h>
#include <utilkit/sections/sections_errors.h>

#include "section_spans.h"

namespace {

enum class Combination : int32_t { None, Union, Intersection };

// The merged spans of `items`, reporting a section with start > end.
template <class T>
bool MergedSpans(const VCArray<VCUSections::Item>& items, VTSectionUnits units,
                 const char* location, std::vector<VCUSectionSpan<T>>* spans) {
  int32_t bad = -1;
  if (!VFSectionSpans(items, spans, &bad)) {
    return VFReportSection(kSectionsErrorStartAfterEnd, location, items[bad], bad, units);
  }
  VFMergeSectionSpans(spans);
  return true;
}

// `items` normalised and combined with `other` (null for none) into `out`.
// May throw std::bad_alloc.
template <class T>
bool Combine(const VCArray<VCUSections::Item>& items, const VCArray<VCUSections::Item>* other,
             Combination how, VTSectionUnits units, const char* location,
             VCArray<VCUSections::Item>* out) {
  std::vector<VCUSectionSpan<T>> spans, otherSpans;
  if (!MergedSpans(items, units, location, &spans)) return false;
  if (other != nullptr && !MergedSpans(*other, units, location, &otherSpans)) return false;
  if (how == Combination::Union) {
    spans.insert(spans.end(), otherSpans.begin(), otherSpans.end());
    VFMergeSectionSpans(&spans);
  } else if (how == Combination::Intersection) {
    spans = VFIntersectSectionSpans(spans, otherSpans);
  }
  if (!out->SetSize(static_cast<int32_t>(spans.size()))) {
    return VFReportError(kSectionsErrorOutOfMemory, location);
  }
  for (size_t i = 0; i < spans.size(); ++i)
    (*out)[static_cast<int32_t>(i)] = VFSectionItem(spans[i]);
  return true;
}

// Combine in the value type of `units`, turning std::bad_alloc into an error.
bool Run(const VCArray<VCUSections::Item>& items, const VCArray<VCUSections::Item>* other,
         Combination how, VTSectionUnits units, const char* location,
         VCArray<VCUSections::Item>* out) {
  try {
    return units == VTSectionUnits::Time
               ? Combine<double>(items, other, how, units, location, out)
               : Combine<int64_t>(items, other, how, units, location, out);
  } catch (...) {
    return VFReportError(kSectionsErrorOutOfMemory, location);
  }
}

}  // namespace

bool VCUSections::Normalise() {
  return CombineWith(nullptr, static_cast<int32_t>(Combination::None), "VCUSections::Normalise");
}

bool VCUSections::Unite(const VCUSections& other) {
  return CombineWith(&other, static_cast<int32_t>(Combination::Union), "VCUSections::Unite");
}

bool VCUSections::Intersect(const VCUSections& other) {
  return CombineWith(&other, static_cast<int32_t>(Combination::Intersection),
                     "VCUSections::Intersect");
}

bool VCUSections::CombineWith(const VCUSections* other, int32_t how, const char* location) {
  if (other != nullptr && other->m_units != m_units) {
    return VFReportError(kSectionsErrorUnits, location,
                         other->m_units == VTSectionUnits::Time ? "time" : "points");
  }
  VCArray<Item> out;
  if (!Run(m_items, other ? &other->m_items : nullptr, static_cast<Combination>(how), m_units,
           location, &out)) {
    return false;
  }
  m_items = std::move(out);
  return true;
}
