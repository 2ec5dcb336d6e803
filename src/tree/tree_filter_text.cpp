// The filter text of VCUTree: one brace level is read by a small state
// machine, nested levels by recursion (at most the tree's maxFilterNesting deep).
#include <utilkit/tree/tree.h>

#include <algorithm>
#include <memory>
#include <new>

#include <utilkit/base/error_report.h>
#include <utilkit/base/number_text.h>
#include <utilkit/base/text_helpers.h>
#include <utilkit/base/vc_time.h>

#include "tree/tree_data.h"

namespace {

constexpr char kParseLocation[] = "VCUTree::FilterParseBrace";

enum class State { Start, Name, Operator, Value, Done };

bool IsBlank(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

bool IsOperatorChar(char c) {
  return c == '&' || c == '|' || c == '>' || c == '=' || c == '<' || c == '~' || c == '!';
}

// The comparison type of `op`, or kNone when it is not one.
VCUTreeFilterBasic::VTFilterBasicType ComparisonType(const VCString& op) {
  static constexpr const char* kOperators[] = {"=", "!=", ">", ">=", "<", "<=", "~"};
  int32_t type = VCUTreeFilterBasic::kEqual;
  for (const char* candidate : kOperators) {
    if (op.Compare(candidate) == 0) return static_cast<VCUTreeFilterBasic::VTFilterBasicType>(type);
    ++type;
  }
  return VCUTreeFilterBasic::kNone;
}

// A comparison value: a date and time, else a 64-bit integer, else a double,
// else the text itself.
VCVariant ValueFromText(const VCString& text) {
  VCTime time;
  if (time.DecodeString(text, VCTime::kDecodeDate | VCTime::kDecodeDateTime)) {
    return VCVariant(time);
  }
  int64_t integer = 0;
  if (VFAscToNum(text, &integer)) return VCVariant(integer);
  double real = 0;
  if (VFAscToNum(text, &real)) return VCVariant(real);
  return VCVariant(text.c_str());
}

// An AND or OR of two operands, which it then owns.
template <class Combined>
VCUTreeFilterDefBase* Combine(std::unique_ptr<VCUTreeFilterDefBase>& left,
                              std::unique_ptr<VCUTreeFilterDefBase>& right) {
  auto combined = std::make_unique<Combined>();
  combined->SetOperands(left.release(), right.release());
  return combined.release();
}

}  // namespace

char VCUTree::SetFilterOpsFromText(const char* text) {
  SetFilteringOp(nullptr);
  try {
    const VCString closed = VCString(text) + ")";  // the whole text is one level
    const char* cursor = closed.c_str();
    m_pData->filter = FilterParseBrace(&cursor);
  } catch (const std::bad_alloc&) {
    VFReportError(kTreeErrorOutOfMemory, kParseLocation);
  }
  return m_pData->filter ? 1 : 0;
}

void VCUTree::SetMaxFilterNesting(int32_t levels) {
  m_pData->maxFilterNesting = std::max(levels, 1);
}

int32_t VCUTree::GetMaxFilterNesting() const {
  return m_pData->maxFilterNesting;
}

VCUTreeFilterDefBase* VCUTree::FilterParseBrace(const char** cursor, int32_t depth) {
  const char* p = *cursor;
  State state = State::Start;
  VCString negation, name, op, value;
  std::unique_ptr<VCUTreeFilterDefBase> left, right;
  const auto fail = [](int32_t code) -> VCUTreeFilterDefBase* {
    VFReportError(code, kParseLocation);
    return nullptr;  // the operands go with their unique_ptrs
  };
  while (state != State::Done) {
    if (*p == '\0') return fail(kTreeErrorMismatchedBraces);
    const char c = *p;
    if (c == '(') {
      if (depth >= m_pData->maxFilterNesting) return fail(kTreeErrorFilterSyntax);
      ++p;
      std::unique_ptr<VCUTreeFilterDefBase> nested(FilterParseBrace(&p, depth + 1));
      if (!nested) return nullptr;
      if (state == State::Start) {
        left = std::move(nested);
        state = State::Operator;
      } else {
        right = std::move(nested);
        state = State::Value;
      }
      continue;  // the character after the nested ")" is handled in this same step
    }
    switch (state) {
      case State::Start:
        if (c == ')') return fail(kTreeErrorFilterSyntax);
        if (IsBlank(c)) break;
        if (c == '!') {
          negation = "!";
          state = State::Name;
          break;
        }
        state = State::Name;
        [[fallthrough]];
      case State::Name:
        if (c == ')') {
          state = State::Done;
          break;
        }
        if (!IsOperatorChar(c)) {
          name += c;
          break;
        }
        state = State::Operator;
        [[fallthrough]];
      case State::Operator:
        if (c == ')') {
          if (!left) return fail(kTreeErrorFilterSyntax);
          state = State::Done;
        } else if (IsOperatorChar(c)) {
          op += c;
        } else if (!IsBlank(c) || !op.IsEmpty()) {
          state = State::Value;
          value += c;
        }
        break;
      case State::Value:
        if (c == ')') {
          state = State::Done;
        } else {
          value += c;
        }
        break;
      case State::Done:
        break;
    }
    ++p;
  }
  *cursor = p;
  for (VCString* text : {&negation, &name, &op, &value}) {
    VFSqueeze(*text, kSqueezeLeading | kSqueezeTrailing);
  }
  if (negation.IsEmpty() && !op.IsEmpty()) {
    if (op.Compare("&") == 0 || op.Compare("|") == 0) {
      if (!left || !right || !name.IsEmpty() || !value.IsEmpty()) {
        return fail(kTreeErrorFilterSyntax);
      }
      return op.Compare("&") == 0 ? Combine<VCUTreeFilterAND>(left, right)
                                  : Combine<VCUTreeFilterOR>(left, right);
    }
    const VCUTreeFilterBasic::VTFilterBasicType type = ComparisonType(op);
    if (left || right || name.IsEmpty() || value.IsEmpty() || type == VCUTreeFilterBasic::kNone) {
      return fail(kTreeErrorFilterSyntax);
    }
    return new VCUTreeFilterBasic(name, type, ValueFromText(value));
  }
  if (negation.IsEmpty()) {
    // A bare level: a parenthesised filter, or an existence test.
    if (!name.IsEmpty())
      return new VCUTreeFilterBasic(name, VCUTreeFilterBasic::kExists, VCVariant());
    if (!left) return fail(kTreeErrorFilterSyntax);
    return left.release();
  }
  if (name.IsEmpty() || !value.IsEmpty() || !op.IsEmpty() || left || right) {
    return fail(kTreeErrorFilterSyntax);
  }
  return new VCUTreeFilterBasic(name, VCUTreeFilterBasic::kNotExists, VCVariant());
}
