#include <utilkit/table/table_filter_and.h>
#include <utilkit/table/table_filter_compound.h>
#include <utilkit/table/table_filter_or.h>

#include <utilkit/table/table_errors.h>

#include "table/error_mark.h"

using utilkit::table::ErrorMark;

VCUTableFilterCompound::VCUTableFilterCompound(char settles, int32_t missingCode,
                                               const char* location)
    : m_settles(settles), m_missingCode(missingCode), m_location(location) {}

VCUTableFilterCompound::~VCUTableFilterCompound() {
  if (m_second != m_first) delete m_second;
  delete m_first;
}

bool VCUTableFilterCompound::SetFilters(VCUTableFilter* first, VCUTableFilter* second) {
  m_first = first;
  m_second = second;
  return true;
}

bool VCUTableFilterCompound::Validate(VCUTable* table) {
  if (m_first == nullptr || m_second == nullptr) return VFReportError(m_missingCode, m_location);
  return m_first->Validate(table) && m_second->Validate(table);
}

bool VCUTableFilterCompound::CheckRow(VCUTable* table, int64_t row, char* pass) {
  *pass = 0;
  if (m_first == nullptr || m_second == nullptr) return VFReportError(m_missingCode, m_location);
  if (!m_first->CheckRow(table, row, pass)) return false;
  if ((*pass != 0) == (m_settles != 0)) return true;
  return m_second->CheckRow(table, row, pass);
}

bool VCUTableFilterCompound::CheckRows(VCUTable* table, const int32_t* rows, int32_t count,
                                       int32_t* passed, int32_t* passedCount) {
  return CheckBlock(table, rows, 0, count, passed, passedCount);
}

bool VCUTableFilterCompound::CheckRange(VCUTable* table, int64_t first, int32_t count,
                                        int32_t* passed, int32_t* passedCount) {
  return CheckBlock(table, nullptr, first, count, passed, passedCount);
}

bool VCUTableFilterCompound::CheckBlock(VCUTable* table, const int32_t* rows, int64_t first,
                                        int32_t count, int32_t* passed, int32_t* passedCount) {
  if (m_first == nullptr || m_second == nullptr) return VFReportError(m_missingCode, m_location);
  const ErrorMark mark;
  try {
    if (Combine(table, rows, first, count, passed, passedCount)) return true;
  } catch (...) {
    return VFReportError(kTableErrorOutOfMemory, "VCUTableFilterCompound::CheckRows");
  }
  // The first failing row of a row-by-row check tells which error to report.
  mark.Rollback();
  return rows ? VCUTableFilter::CheckRows(table, rows, count, passed, passedCount)
              : VCUTableFilter::CheckRange(table, first, count, passed, passedCount);
}

bool VCUTableFilterCompound::Combine(VCUTable* table, const int32_t* rows, int64_t first,
                                     int32_t count, int32_t* passed, int32_t* passedCount) {
  const auto size = static_cast<size_t>(count);
  m_firstPassed.resize(size);
  int32_t firstCount = 0;
  const bool ok = rows
                      ? m_first->CheckRows(table, rows, count, m_firstPassed.data(), &firstCount)
                      : m_first->CheckRange(table, first, count, m_firstPassed.data(), &firstCount);
  if (!ok) return false;
  // The positions the first sub-filter leaves open: for AND those it
  // passed, for OR the others.
  const int32_t* openAt = m_firstPassed.data();
  int32_t open = firstCount;
  if (m_settles) {
    m_openAt.resize(size);
    open = 0;
    for (int32_t i = 0, j = 0; i < count; ++i) {
      const bool settled = j < firstCount && m_firstPassed[static_cast<size_t>(j)] == i;
      m_openAt[static_cast<size_t>(open)] = i;
      open += settled ? 0 : 1;
      j += settled ? 1 : 0;
    }
    openAt = m_openAt.data();
  }
  m_open.resize(static_cast<size_t>(open));
  for (int32_t k = 0; k < open; ++k) {
    m_open[static_cast<size_t>(k)] =
        rows ? rows[openAt[k]] : static_cast<int32_t>(first + openAt[k]);
  }
  m_secondPassed.resize(static_cast<size_t>(open));
  int32_t secondCount = 0;
  if (open > 0 &&
      !m_second->CheckRows(table, m_open.data(), open, m_secondPassed.data(), &secondCount)) {
    return false;
  }
  const int32_t* second = m_secondPassed.data();
  if (!m_settles) {
    for (int32_t k = 0; k < secondCount; ++k) passed[k] = openAt[second[k]];
    *passedCount = secondCount;
    return true;
  }
  // OR: both lists ascend; merge them.
  int32_t n = 0, a = 0, b = 0;
  while (a < firstCount || b < secondCount) {
    const bool takeFirst =
        b == secondCount ||
        (a < firstCount && m_firstPassed[static_cast<size_t>(a)] < openAt[second[b]]);
    passed[n++] = takeFirst ? m_firstPassed[static_cast<size_t>(a++)] : openAt[second[b++]];
  }
  *passedCount = n;
  return true;
}

VCUTableFilterAND::VCUTableFilterAND()
    : VCUTableFilterCompound(0, kTableErrorAndOperands, "VCUTableFilterAND::Validate") {}
VCUTableFilterAND::~VCUTableFilterAND() = default;

VCUTableFilterOR::VCUTableFilterOR()
    : VCUTableFilterCompound(1, kTableErrorOrOperands, "VCUTableFilterOR::Validate") {}
VCUTableFilterOR::~VCUTableFilterOR() = default;
