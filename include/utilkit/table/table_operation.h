// VCUTableOperation: the base of the table processor's operations.
//
// Filters, sorts, compressions and computed columns derive from it. The
// processor drives each kind through its own members; the base only gives
// them a common virtual destructor (so an owner can delete any of them
// through a base pointer) and tells which kind an operation is.
//
//   VCUTableOperation* op = new VCUTableFilterBasic;
//   if (op->GetKind() == VTTableOperationKind::Filter) { ... }
//   delete op;
//
// Ownership: an operation owns only its own configuration (a compound
// filter also owns its sub-filters); it never owns the tables it reads.
#pragma once

#include <cstdint>

#include <utilkit/base/export.h>

enum class VTTableOperationKind : int32_t {
  Filter = 1,
  Sort = 2,
  Compress = 3,
  NewColumn = 4,
};

class UTILKIT_API VCUTableOperation {
 public:
  virtual ~VCUTableOperation();
  VCUTableOperation(const VCUTableOperation&) = delete;
  VCUTableOperation& operator=(const VCUTableOperation&) = delete;

  // The kind of operation, fixed at construction.
  VTTableOperationKind GetKind() const { return m_kind; }

 protected:
  explicit VCUTableOperation(VTTableOperationKind kind) : m_kind(kind) {}

 private:
  VTTableOperationKind m_kind;
};
