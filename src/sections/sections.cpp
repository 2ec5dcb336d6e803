#include <utilkit/sections/sections.h>

#include <cmath>
#include <string>
#include <utility>

#include <utilkit/base/error_report.h>
#include <utilkit/sections/sections_errors.h>

#include "section_spans.h"

namespace {

constexpr double kSampleTolerance = 1e-9;
// 2^63: the first double beyond int64_t.
constexpr double kPointLimit = 9223372036854775808.0;

bool RateIsValid(double rate) {
  return rate > 0.0 && std::isfinite(rate);
}

bool ReportRate(const char* location, double rate) {
  std::string name;
  VFAppendSectionNumber(&name, rate);
  return VFReportError(kSectionsErrorRate, location, name.c_str());
}

// A whole sample position as a point; false beyond 64 bits or for NaN.
bool ToPoint(double position, int64_t* point) {
  if (!(position >= -kPointLimit && position < kPointLimit)) return false;
  *point = static_cast<int64_t>(position);
  return true;
}

}  // namespace

bool VFReportSection(int32_t code, const char* location, const VCUSections::Item& item,
                     int32_t index, VTSectionUnits units) {
  try {
    std::string name =
        "ch" + std::to_string(item.channel) + ", index " + std::to_string(index) + ": ";
    if (units == VTSectionUnits::Time) {
      VFAppendSectionNumber(&name, item.startTime);
      name += ',';
      VFAppendSectionNumber(&name, item.endTime);
    } else {
      VFAppendSectionNumber(&name, item.startPoint);
      name += ',';
      VFAppendSectionNumber(&name, item.endPoint);
    }
    return VFReportError(code, location, name.c_str());
  } catch (...) {
    return VFReportError(code, location);
  }
}

VCUSections::VCUSections(VTSectionUnits units) : m_units(units) {}

VCUSections::~VCUSections() = default;

void VCUSections::Clear() {
  m_items.RemoveAll();
}

void VCUSections::Clear(VTSectionUnits units) {
  m_items.RemoveAll();
  m_units = units;
}

bool VCUSections::Copy(const VCUSections& source) {
  if (&source == this) return true;
  VCArray<Item> items;
  if (!items.Append(source.m_items.GetData(), source.m_items.GetSize())) {
    return VFReportError(kSectionsErrorOutOfMemory, "VCUSections::Copy");
  }
  m_items = std::move(items);
  m_units = source.m_units;
  return true;
}

bool VCUSections::AddTime(int32_t channel, double start, double end) {
  constexpr const char* kWhere = "VCUSections::AddTime";
  if (m_units != VTSectionUnits::Time) return VFReportError(kSectionsErrorUnits, kWhere, "points");
  Item item;
  item.channel = channel;
  item.startTime = start;
  item.endTime = end;
  if (!std::isfinite(start) || !std::isfinite(end)) {
    return VFReportSection(kSectionsErrorValue, kWhere, item, GetCount(), m_units);
  }
  if (m_items.Add(item) < 0) return VFReportError(kSectionsErrorOutOfMemory, kWhere);
  return true;
}

bool VCUSections::AddPoints(int32_t channel, int64_t start, int64_t end) {
  constexpr const char* kWhere = "VCUSections::AddPoints";
  if (m_units != VTSectionUnits::Points) return VFReportError(kSectionsErrorUnits, kWhere, "time");
  Item item;
  item.channel = channel;
  item.startPoint = start;
  item.endPoint = end;
  if (m_items.Add(item) < 0) return VFReportError(kSectionsErrorOutOfMemory, kWhere);
  return true;
}

bool VCUSections::Remove(int32_t index) {
  if (index < 0 || index >= GetCount()) {
    return VFReportError(kSectionsErrorIndex, "VCUSections::Remove", std::to_string(index).c_str());
  }
  m_items.RemoveAt(index);
  return true;
}

bool VCUSections::GetTime(int32_t index, int32_t* channel, double* start, double* end) const {
  constexpr const char* kWhere = "VCUSections::GetTime";
  if (index < 0 || index >= GetCount()) {
    return VFReportError(kSectionsErrorIndex, kWhere, std::to_string(index).c_str());
  }
  if (m_units != VTSectionUnits::Time) return VFReportError(kSectionsErrorUnits, kWhere, "points");
  const Item& item = m_items[index];
  if (channel) *channel = item.channel;
  if (start) *start = item.startTime;
  if (end) *end = item.endTime;
  return true;
}

bool VCUSections::GetPoints(int32_t index, int32_t* channel, int64_t* start, int64_t* end) const {
  constexpr const char* kWhere = "VCUSections::GetPoints";
  if (index < 0 || index >= GetCount()) {
    return VFReportError(kSectionsErrorIndex, kWhere, std::to_string(index).c_str());
  }
  if (m_units != VTSectionUnits::Points) return VFReportError(kSectionsErrorUnits, kWhere, "time");
  const Item& item = m_items[index];
  if (channel) *channel = item.channel;
  if (start) *start = item.startPoint;
  if (end) *end = item.endPoint;
  return true;
}

bool VCUSections::GetIndicesOfChannel(int32_t channel, VCArray<int32_t>* indices) const {
  indices->RemoveAll();
  for (int32_t i = 0; i < GetCount(); ++i) {
    if (m_items[i].channel == channel && indices->Add(i) < 0) {
      indices->RemoveAll();
      return VFReportError(kSectionsErrorOutOfMemory, "VCUSections::GetIndicesOfChannel");
    }
  }
  return true;
}

bool VCUSections::Validate(double rate, int64_t pointCount, int32_t channelCount,
                           bool reportAll) const {
  constexpr const char* kWhere = "VCUSections::Validate";
  if (!RateIsValid(rate)) return ReportRate(kWhere, rate);
  if (pointCount < 1) {
    return VFReportError(kSectionsErrorPointCount, kWhere, std::to_string(pointCount).c_str());
  }
  const double lastTime = static_cast<double>(pointCount - 1) / rate;
  bool ok = true;
  for (int32_t i = 0; i < GetCount() && (ok || reportAll); ++i) {
    const Item& item = m_items[i];
    const bool time = m_units == VTSectionUnits::Time;
    const bool ordered = time ? item.startTime <= item.endTime : item.startPoint <= item.endPoint;
    const bool inside = time ? item.startTime >= 0.0 && item.startTime <= lastTime &&
                                   item.endTime >= 0.0 && item.endTime <= lastTime
                             : item.startPoint >= 0 && item.startPoint < pointCount &&
                                   item.endPoint >= 0 && item.endPoint < pointCount;
    const bool known = channelCount < 0 || (item.channel >= 0 && item.channel < channelCount);
    const int32_t codes[] = {ordered ? 0 : kSectionsErrorStartAfterEnd,
                             inside ? 0 : kSectionsErrorOutside, known ? 0 : kSectionsErrorChannel};
    for (int32_t code : codes) {
      if (code == 0 || (!ok && !reportAll)) continue;
      ok = VFReportSection(code, kWhere, item, i, m_units);
    }
  }
  return ok;
}

bool VCUSections::TimeToPoint(double time, double rate, int64_t* point) {
  constexpr const char* kWhere = "VCUSections::TimeToPoint";
  if (!RateIsValid(rate)) return ReportRate(kWhere, rate);
  // floor(position + 0.5) would round the double below a half up as well.
  const double position = time * rate;
  const double below = std::floor(position);
  if (!ToPoint(position - below >= 0.5 ? below + 1.0 : below, point)) {
    std::string name;
    VFAppendSectionNumber(&name, time);
    return VFReportError(kSectionsErrorValue, kWhere, name.c_str());
  }
  return true;
}

bool VCUSections::ConvertToPoints(double rate) {
  constexpr const char* kWhere = "VCUSections::ConvertToPoints";
  if (!RateIsValid(rate)) return ReportRate(kWhere, rate);
  if (m_units != VTSectionUnits::Time) return VFReportError(kSectionsErrorUnits, kWhere, "points");
  VCArray<Item> items;
  for (int32_t i = 0; i < GetCount(); ++i) {
    const Item& item = m_items[i];
    Item converted;
    converted.channel = item.channel;
    if (!ToPoint(std::ceil(item.startTime * rate - kSampleTolerance), &converted.startPoint) ||
        !ToPoint(std::floor(item.endTime * rate + kSampleTolerance), &converted.endPoint)) {
      return VFReportSection(kSectionsErrorValue, kWhere, item, i, m_units);
    }
    if (converted.startPoint > converted.endPoint) continue;  // holds no sample
    if (items.Add(converted) < 0) return VFReportError(kSectionsErrorOutOfMemory, kWhere);
  }
  m_items = std::move(items);
  m_units = VTSectionUnits::Points;
  return true;
}

bool VCUSections::ConvertToTime(double rate) {
  constexpr const char* kWhere = "VCUSections::ConvertToTime";
  if (!RateIsValid(rate)) return ReportRate(kWhere, rate);
  if (m_units != VTSectionUnits::Points) return VFReportError(kSectionsErrorUnits, kWhere, "time");
  VCArray<Item> items;
  if (!items.SetSize(GetCount())) return VFReportError(kSectionsErrorOutOfMemory, kWhere);
  for (int32_t i = 0; i < GetCount(); ++i) {
    items[i].channel = m_items[i].channel;
    items[i].startTime = static_cast<double>(m_items[i].startPoint) / rate;
    items[i].endTime = static_cast<double>(m_items[i].endPoint) / rate;
    if (!std::isfinite(items[i].startTime) || !std::isfinite(items[i].endTime)) {
      return VFReportSection(kSectionsErrorValue, kWhere, m_items[i], i, m_units);
    }
  }
  m_items = std::move(items);
  m_units = VTSectionUnits::Time;
  return true;
}
